#include "commands/doctor.h"

#include "audio/player.h"
#include "audio/recorder.h"
#include "commandline/authority.h"
#include "commands/localprogram.h"
#include "hostkit/cataloguejobs.h"
#include "hostkit/hostkit.h"
#include "hostkit/tokenkeeper.h"
#include "terminal/jobprogress.h"
#include "terminal/progress.h"
#include "terminal/table.h"
#include "terminal/terminal.h"

#include <QJsonArray>

namespace {

constexpr int patience = 10000; // ms; unless the user has named a time-out

QString otherwise(const QString &problem, const QString &fine)
{
    return problem.isEmpty() ? fine : problem;
}

} // namespace

void Doctor::start()
{
    auto *job = new UpdateJob(kit(), this);
    connect(job, &UpdateJob::succeeded, this, [this] { report({}); });
    connect(job, &Job::failed, this, &Doctor::report);
    connect(job, &Job::progressed, new JobProgress(progress(), {}, job), &JobProgress::show);
    job->setTimeout(options().timeout > 0 ? options().timeout : patience);
    job->start();
}

void Doctor::look(const Reason &service)
{
    const bool isTls = service.kind == Reason::Kind::Tls;
    const bool answered = service.isNone() || service.kind == Reason::Kind::Refused
                          || service.kind == Reason::Kind::BadAnswer;
    const QString address = HostKit::serviceAddress();
    m_findings.append({QStringLiteral("service"), answered || isTls,
                       answered || isTls ? address + QStringLiteral(" answers; it is compiled in")
                                         : service.line()});
    const QString authority = Authority::of(options());
    if (answered || isTls)
        m_findings.append({QStringLiteral("trust"), answered,
                           answered
                               ? otherwise(authority, QStringLiteral("the system's authorities"))
                               : service.line()});
    const Reason session = kit()->tokens()->problem();
    m_findings.append({QStringLiteral("session"), session.isNone(),
                       otherwise(session.line(), kit()->tokens()->session().nickname)});
    const QString program = LocalProgram::path();
    if (LocalProgram::isAsked())
        m_findings.append(
            {QStringLiteral("local service"), !program.isEmpty(),
             program.isEmpty() ? QStringLiteral("vo-localservice is not installed") : program});
    const QString fine = QStringLiteral("is there");
    m_findings.append({QStringLiteral("player"), Player::problem().isEmpty(),
                       otherwise(Player::problem(), fine)});
    m_findings.append({QStringLiteral("recorder"), Recorder::problem().isEmpty(),
                       otherwise(Recorder::problem(), fine)});
}

void Doctor::report(const Reason &reason)
{
    look(reason);
    Table table({QStringLiteral("CHECK"), QStringLiteral("OK"), QStringLiteral("WHAT")});
    QJsonArray checks;
    for (const Finding &finding : qAsConst(m_findings)) {
        table.add({finding.name, finding.isFine ? QStringLiteral("yes") : QStringLiteral("no"),
                   finding.text});
        checks.append(QJsonObject{{QStringLiteral("check"), finding.name},
                                  {QStringLiteral("ok"), finding.isFine},
                                  {QStringLiteral("text"), finding.text}});
    }
    const QJsonObject document{{QStringLiteral("checks"), checks}};
    if (reason.isNone())
        finish(table.fitting(Terminal::columns(stdout)), document);
    else if (print(table.fitting(Terminal::columns(stdout)), document))
        Q_EMIT failed(reason);
}
