#include "commands/task.h"

#include "hostkit/outputfile.h"
#include "hostkit/recognizejob.h"
#include "hostkit/speakjob.h"
#include "terminal/console.h"

Task::Task(const Options &options, const Tools &tools)
    : Command(options, tools)
{
}

QString Task::read(Options &options)
{
    if (options.subjects.at(0).isEmpty())
        return QStringLiteral("task needs an ID");
    if (options.output == QLatin1String("-"))
        return QStringLiteral("-o needs the name of a file");
    if (options.status && !options.output.isNull())
        return QStringLiteral("--status fetches nothing and does not go with -o");
    return {};
}

QString Task::prepare(Options &options)
{
    return options.output.isNull() ? QString() : OutputFile(options.output).problem();
}

void Task::start()
{
    if (options().output.isNull())
        hear();
    else
        save();
}

void Task::takeUp(TaskJob *job)
{
    const QString id = options().subjects.at(0);
    job->takeUp(id);
    if (options().status) {
        connect(job, &TaskJob::processing, this, [this, job] {
            job->disconnect(this);
            job->cancel();
            finish(QStringLiteral("queued or running\n"), {{QStringLiteral("done"), false}});
        });
    }
    setWayOn(QStringLiteral("the service goes on; the same command waits again"));
    run(job);
}

void Task::hear()
{
    auto *job = new RecognizeJob(kit(), {}, Job::Form::Long, this);
    connect(job, &RecognizeJob::succeeded, this, [this](const QString &text) {
        QJsonObject document{{QStringLiteral("text"), text}};
        if (options().status)
            document.insert(QStringLiteral("done"), true);
        finish(Console::onOneLine(text) + QLatin1Char('\n'), document);
    });
    takeUp(job);
}

void Task::save()
{
    auto *job = new SpeakJob(kit(), {}, options().output, this);
    connect(job, &SpeakJob::succeeded, this, [this](const QString &path, qint64 bytes) {
        finish({}, {{QStringLiteral("file"), path}, {QStringLiteral("bytes"), bytes}});
    });
    takeUp(job);
}
