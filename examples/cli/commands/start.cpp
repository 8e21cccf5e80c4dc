#include "commands/start.h"

#include "commandline/authority.h"
#include "hostkit/hostkit.h"
#include "terminal/console.h"

#include <QFileInfo>

#include <utility>

Start::Start(const Options &options, const Tools &tools)
    : Command(options, tools)
{
    m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_service.setStandardInputFile(QProcess::nullDevice());
    connect(&m_service, &QProcess::readyReadStandardOutput, this, &Start::onOutput);
    connect(&m_service, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &Start::onEnd);
    connect(&m_service, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            onEnd();
    });
}

QString Start::prepare(Options &)
{
    if (!LocalProgram::isAsked())
        return QStringLiteral("this build asks %1, which is no service of this machine")
            .arg(HostKit::serviceAddress());
    if (LocalProgram::path().isEmpty())
        return QStringLiteral("vo-localservice is not installed");
    return {};
}

void Start::start() { m_service.listen(); }

// Codes and pages of sign-ins come here, too: the user has to read all of it.
void Start::onOutput()
{
    while (m_service.canReadLine()) {
        const QString line = QString::fromUtf8(m_service.readLine()).trimmed();
        if (!Console::print(Console::onOneLine(line) + QLatin1Char('\n')))
            return failPrinting();
        if (!std::exchange(m_isReady, true))
            onReady(line);
    }
}

void Start::onReady(const QString &line)
{
    const QFileInfo authority(line.section(QStringLiteral(", authority "), 1));
    const QString trusted = Authority::of(options());
    if (trusted.isEmpty() && Authority::remember(authority.absoluteFilePath()))
        Console::show(QStringLiteral("vospeak trusts this service from now on (see %1)\n")
                          .arg(Authority::settings()));
    else if (QFileInfo(trusted).canonicalFilePath() != authority.canonicalFilePath())
        Console::show(QStringLiteral("vospeak trusts this service with --ca %1\n")
                          .arg(authority.absoluteFilePath()));
    Console::show(QStringLiteral("In another terminal: vospeak login --sms 5550100\n"
                                 "Ctrl-C ends the service.\n"));
}

void Start::onEnd()
{
    Q_EMIT failed({Reason::Kind::Cancelled, QStringLiteral("the local service has ended")});
}
