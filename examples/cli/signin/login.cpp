#include "signin/login.h"

#include "commandline/options.h"
#include "signin/qrsignin.h"
#include "signin/smssignin.h"

QString Login::read(Options &options)
{
    const bool isBySms = !options.phone.isEmpty();
    if (options.scan == isBySms)
        return QStringLiteral("login needs either --qr or --sms NUMBER");
    if (options.open && isBySms)
        return QStringLiteral("--open does not go with --sms");
    return {};
}

std::unique_ptr<Command> Login::make(const Options &options, const Tools &tools)
{
    if (options.scan)
        return std::make_unique<QrSignIn>(options, tools);
    return std::make_unique<SmsSignIn>(options, tools);
}
