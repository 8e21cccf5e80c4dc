#include "smssignin.h"

#include "console.h"
#include "hostkit/failurereason.h"
#include "network/vonetworkintf.h"
#include "options.h"

SmsSignIn::SmsSignIn(const Options &options, const Tools &tools)
    : SignIn(options, tools)
    , m_phone(options.phone)
{
    connect(tools.service, &VoNetworkIntf::signalSendSmsEnd, this, &SmsSignIn::askForCode);
    connect(&m_reader, &LineReader::read, this, &SmsSignIn::onCode);
    connect(tools.service, &VoNetworkIntf::signalSmsLoginEnd, this, &SmsSignIn::onUser);
}

void SmsSignIn::signIn() { service()->SendSmsVerifyCode(m_phone); }

// The user is asked for the code in any case: the service object does not say whether one was sent.
void SmsSignIn::askForCode()
{
    if (const QString problem = FailureReason::orElse({}); !problem.isEmpty()) {
        Q_EMIT failed(problem);
        return;
    }
    Console::ask(QStringLiteral("If the service sent a code to %1, enter it:").arg(m_phone));
    m_reader.start();
}

void SmsSignIn::onCode(const QString &code)
{
    if (code.isEmpty())
        Q_EMIT failed(QStringLiteral("no code was entered"));
    else
        service()->SmsVerifyCodeLogin(m_phone, code);
}

void SmsSignIn::onUser(UserInfo *user)
{
    const std::unique_ptr<UserInfo> owned(user);
    if (user)
        finishWith(*user);
    else
        Q_EMIT failed(refusedByService());
}
