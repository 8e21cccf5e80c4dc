#include "signin/smssignin.h"

#include "commands/localprogram.h"
#include "hostkit/signinjobs.h"
#include "signin/signedin.h"
#include "terminal/console.h"
#include "terminal/progress.h"

SmsSignIn::SmsSignIn(const Options &options, const Tools &tools)
    : Command(options, tools)
{
    connect(&m_reader, &LineReader::read, this, &SmsSignIn::onCode);
}

void SmsSignIn::start()
{
    m_job = new SmsSignInJob(kit(), options().phone, this);
    connect(m_job, &SmsSignInJob::codeSent, this, &SmsSignIn::askForCode);
    connect(m_job, &SignInJob::succeeded, this, [this](const UserInfo &user) {
        finish(SignedIn::text(user), SignedIn::document(user));
    });
    run(m_job);
}

// The user is asked for the code in any case: the service object does not say whether one was sent.
// The service of this machine sends to no phone.
void SmsSignIn::askForCode()
{
    progress()->clear();
    Console::ask((LocalProgram::isAsked()
                      ? QStringLiteral("If vo-localservice printed a code for %1, enter it:")
                      : QStringLiteral("If the service sent a code to %1, enter it:"))
                     .arg(options().phone));
    m_reader.start();
}

void SmsSignIn::onCode(const QString &code)
{
    if (code.isEmpty())
        Q_EMIT failed({Reason::Kind::Cancelled, QStringLiteral("no code was entered")});
    else
        m_job->enter(code);
}
