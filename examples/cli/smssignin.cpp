#include "smssignin.h"

#include "console.h"
#include "hostkit/signinjobs.h"
#include "options.h"
#include "progress.h"
#include "signedin.h"

SmsSignIn::SmsSignIn(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_phone(options.phone)
{
    connect(&m_reader, &LineReader::read, this, &SmsSignIn::onCode);
}

void SmsSignIn::start()
{
    m_job = new SmsSignInJob(kit(), m_phone, this);
    connect(m_job, &SmsSignInJob::codeSent, this, &SmsSignIn::askForCode);
    connect(m_job, &SignInJob::succeeded, this, [this](const UserInfo &user) {
        finish(SignedIn::text(user), SignedIn::document(user));
    });
    run(m_job);
}

// The user is asked for the code in any case: the service object does not say whether one was sent.
void SmsSignIn::askForCode()
{
    progress()->clear();
    Console::ask(QStringLiteral("If the service sent a code to %1, enter it:").arg(m_phone));
    m_reader.start();
}

void SmsSignIn::onCode(const QString &code)
{
    if (code.isEmpty())
        Q_EMIT failed({Reason::Kind::Unusable, QStringLiteral("no code was entered")});
    else
        m_job->enter(code);
}
