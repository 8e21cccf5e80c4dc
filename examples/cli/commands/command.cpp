#include "commands/command.h"

#include "hostkit/job.h"
#include "terminal/console.h"
#include "terminal/interrupt.h"
#include "terminal/jobprogress.h"
#include "terminal/progress.h"

Command::Command(const Options &options, const Tools &tools)
    : m_tools(tools)
    , m_options(options)
{
}

Command::~Command() = default;

QString Command::wayOn() const { return m_wayOn; }

const Options &Command::options() const { return m_options; }

HostKit *Command::kit() const { return m_tools.kit; }

Progress *Command::progress() const { return m_tools.progress; }

void Command::setWayOn(const QString &line) { m_wayOn = line; }

void Command::run(Job *job, const QString &asking)
{
    connect(job, &Job::progressed, new JobProgress(m_tools.progress, asking, job),
            &JobProgress::show);
    connect(job, &Job::failed, this, &Command::fail);
    job->setTimeout(m_options.timeout);
    job->start();
}

bool Command::print(const QString &text, const QJsonObject &document)
{
    m_tools.progress->clear(); // the result may go to the same terminal
    if (Console::print(m_options.json ? Console::line(document) : text))
        return true;
    failPrinting();
    return false;
}

void Command::failPrinting()
{
    m_wayOn.clear();
    if (Console::hasLostReader())
        Q_EMIT ended(Unread);
    else
        Q_EMIT failed({Reason::Kind::File, Console::printingFailed()});
}

void Command::finish(const QString &text, const QJsonObject &document, int status)
{
    Interrupt::leaveToSystem(); // a slow reader of the result keeps this from the event loop
    if (print(text, document))
        Q_EMIT ended(status);
}

void Command::fail(const Reason &reason) { Q_EMIT failed(reason); }
