#include "commands/recognize.h"

#include "hostkit/inputfile.h"
#include "hostkit/limits.h"
#include "hostkit/recognizejob.h"
#include "hostkit/wavfile.h"
#include "terminal/console.h"

namespace {

// A recording whose duration does not show is taken for a short one; the service refuses it if it
// is not.
Job::Form formOf(const QString &recording, const Options &options)
{
    const bool isLong =
        !InputFile::isAddress(recording) && WavFile::duration(recording) > Limits::shortRecording;
    return options.longForm || isLong ? Job::Form::Long : Job::Form::Short;
}

} // namespace

Recognize::Recognize(const Options &options, const Tools &tools)
    : Command(options, tools)
{
}

QString Recognize::read(Options &options)
{
    return options.subjects.contains(QString()) ? QStringLiteral("recognize needs a recording")
                                                : QString();
}

QString Recognize::prepare(Options &options)
{
    for (const QString &recording : qAsConst(options.subjects)) {
        const Reason reason = RecognizeJob::problem(recording, formOf(recording, options));
        if (!reason.isNone())
            return reason.line();
    }
    return {};
}

void Recognize::start()
{
    const QString recording = options().subjects.at(m_place);
    auto *job = new RecognizeJob(kit(), recording, formOf(recording, options()), this);
    connect(job, &RecognizeJob::succeeded, this, &Recognize::onText);
    connect(job, &TaskJob::named, this, [this](const QString &id) {
        setWayOn(QStringLiteral("the service goes on; vospeak task %1 gets the text")
                     .arg(Console::onOneLine(id)));
    });
    run(job, QStringLiteral("recognising"));
}

void Recognize::onText(const QString &text)
{
    setWayOn({});
    const QString recording = options().subjects.at(m_place);
    QString line = Console::onOneLine(text) + QLatin1Char('\n');
    QJsonObject document{{QStringLiteral("text"), text}};
    if (options().subjects.size() > 1) {
        line.prepend(Console::onOneLine(recording) + QStringLiteral(": "));
        document.insert(QStringLiteral("file"), recording);
    }
    if (++m_place == options().subjects.size())
        finish(line, document);
    else if (print(line, document))
        start();
}
