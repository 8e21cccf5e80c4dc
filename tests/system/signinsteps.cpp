#include "signinsteps.h"

#include "localservice.h"
#include "serviceaddress.h"

#include <QJsonDocument>

namespace {

QString accountAddress(const QString &operation)
{
    return SignInSteps::address(QStringLiteral("/ucenter/public/index.php/v1/") + operation);
}

QByteArray bytes(const QJsonObject &object) { return QJsonDocument(object).toJson(); }

} // namespace

SignInSteps::SignInSteps(LocalService *service)
    : m_service(service)
    , m_client(service->authority())
{
}

QString SignInSteps::address(const QString &path) { return serviceAddress() + path; }

ServiceClient &SignInSteps::client() { return m_client; }

SignInSteps::Reply SignInSteps::askForCode(const QString &phone)
{
    return m_client.postTo(accountAddress(QStringLiteral("verify/sms")),
                           bytes({{QStringLiteral("phone"), phone}, {QStringLiteral("scene"), 1}}));
}

QString SignInSteps::takeCode(const QString &phone)
{
    const QByteArray beginning = "vo-localservice: SMS to " + phone.toUtf8() + ": ";
    const QByteArray line = m_service->takeLine(beginning);
    return QString::fromUtf8(line.mid(beginning.size())).section(QLatin1Char(' '), 0, 0);
}

SignInSteps::Reply SignInSteps::enterCode(const QString &phone, const QString &code)
{
    return m_client.postTo(
        accountAddress(QStringLiteral("login/sms")),
        bytes({{QStringLiteral("phone"), phone}, {QStringLiteral("verify"), code}}));
}

QJsonObject SignInSteps::signIn(const QString &phone)
{
    if (!askForCode(phone).isSuccess())
        return {};
    return enterCode(phone, takeCode(phone)).data();
}

// The doubled slash is how clients send it.
SignInSteps::Reply SignInSteps::pollQr(const QString &businessCode)
{
    return m_client.get(
        accountAddress(QStringLiteral("/login/getMpStatus?business_code=") + businessCode));
}

SignInSteps::Reply SignInSteps::beginQr()
{
    return m_client.get(accountAddress(QStringLiteral("login/getMpQrCode")));
}

QString SignInSteps::takePage()
{
    const QByteArray beginning = "vo-localservice: sign-in page ";
    return QString::fromUtf8(m_service->takeLine(beginning).mid(beginning.size()));
}

SignInSteps::Reply SignInSteps::renew(const QString &refreshToken)
{
    return m_client.get(
        accountAddress(QStringLiteral("token/refresh?refresh_token=") + refreshToken));
}

int SignInSteps::speak(const QString &token)
{
    const QJsonObject speech{{QStringLiteral("feature"), QStringLiteral("voiceSynthesis")},
                             {QStringLiteral("text"), QStringLiteral("Hi.")}};
    return m_client.post(QStringLiteral("asr/process"), speech, "Bearer " + token.toUtf8()).code();
}

QString SignInSteps::token(const QJsonObject &signedIn, const char *name)
{
    const QJsonValue token =
        signedIn.value(QLatin1String("token")).toObject().value(QLatin1String(name));
    return QString::number(static_cast<qint64>(token.toDouble()));
}

QString SignInSteps::otherThan(const QString &code)
{
    const int number = (code.toInt() + 1) % 1000000;
    return QStringLiteral("%1").arg(number, 6, 10, QLatin1Char('0'));
}
