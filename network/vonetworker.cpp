#include "network/vonetworker.h"

#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "network/buildconstants.h"
#include "network/serviceenvelope.h"
#include "network/serviceoperation.h"

#include <QEventLoop>
#include <QJsonObject>
#include <QPointer>
#include <QProcess>

namespace {

constexpr int applicationCode = 40000000;
constexpr char channelCode[] = "channel_360";

// The service sees no cookies: a request does not depend on what an earlier reply left behind.
void keepNoCookies(QNetworkRequest *request)
{
    request->setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request->setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
}

// Qt 5.15 deprecates the overload that splits a command line, and offers the splitting by itself.
void startCommandLine(QProcess *process, const QString &command)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    QStringList words = QProcess::splitCommand(command);
    const QString program = words.isEmpty() ? QString() : words.takeFirst();
    process->start(program, words, QIODevice::ReadWrite);
#else
    process->start(command, QIODevice::ReadWrite);
#endif
}

// "1" is what the SLOT macro puts in front of a signature.
QString slotKey(const ServiceOperation &operation, const char *outcome)
{
    return QStringLiteral("1slot%1%2(QByteArray)")
        .arg(QLatin1String(operation.stem), QLatin1String(outcome));
}

} // namespace

VoNetworker::VoNetworker()
    : deviceId(runCommand(QLatin1String(BuildConstants::deviceIdCommand)))
    , client(new HttpClient) // deleted later by the destructor
{
}

VoNetworker::~VoNetworker()
{
    client->deleteLater(); // the object may go from inside one of the client's own signals
    client = nullptr;
}

QString VoNetworker::runCommand(QString command)
{
    QProcess process;
    startCommandLine(&process, command);
    process.waitForFinished(-1);
    if (!process.isOpen()) // the command names no program
        return QString();
    QString output = QString::fromLocal8Bit(process.readAllStandardOutput());
    const QString title = command.split(QLatin1Char(' ')).last();
    output.remove(title, Qt::CaseInsensitive);
    output.remove(QLatin1Char('\r'));
    output.remove(QLatin1Char('\n'));
    process.close();
    return output.simplified();
}

QVariantMap VoNetworker::commonHeaders() const
{
    return {{QStringLiteral("appcode"), applicationCode},
            {QStringLiteral("appversion"), QLatin1String(BuildConstants::libraryVersion)},
            {QStringLiteral("channelcode"), QLatin1String(channelCode)},
            {QStringLiteral("deviceid"), deviceId}};
}

QVariantMap VoNetworker::authorizedHeaders(qint64 token) const
{
    QVariantMap headers = commonHeaders();
    headers.insert(QStringLiteral("Authorization"), QStringLiteral("Bearer %1").arg(token));
    return headers;
}

void VoNetworker::issue(const ServiceOperation &operation, const QVariantMap &headers,
                        const QJsonObject &body, const QString &query)
{
    // Plain concatenation: a path that begins with a slash is sent with a doubled one.
    const QString path = QString::fromLatin1(operation.path).replace(QLatin1String("%1"), query);
    const QString address =
        QLatin1String(BuildConstants::serviceBaseAddress) + QLatin1String(operation.prefix) + path;
    HttpRequest request(operation.method, client);
    request.url(address).headers(headers);
    keepNoCookies(&request.fields.networkRequest);
    request.fields.gathersBody = true; // replies are long: catalogues, recordings
    if (operation.method == HttpMethod::Post)
        request.jsonBody(body);
    const QVariant self = QVariant::fromValue(static_cast<QObject *>(this));
    request.bind(CallbackKind::Finished, slotKey(operation, "Suc"), self)
        .bind(CallbackKind::Error, slotKey(operation, "Fail"), self)
        .send();
}

/// Reads a long @p reply, which a slot has been called with, and lets go of its bytes: the host's
/// records need the memory.
std::optional<QJsonValue> VoNetworker::dataOf(QByteArray *reply, const ServiceOperation &operation)
{
    auto data = ServiceEnvelope::read(*reply, operation);
    reply->clear();
    if (auto *response = qobject_cast<HttpResponse *>(sender()))
        response->dropBody();
    return data;
}

// False when the host has released this object during the wait: nothing of it is left then.
bool VoNetworker::waitForAnswer()
{
    const QPointer<VoNetworker> self(this);
    QEventLoop loop;
    connect(client, &QObject::destroyed, &loop, &QEventLoop::quit); // the client goes with this
    blockingLoop = &loop;
    loop.exec();
    if (!self)
        return false;
    blockingLoop = nullptr;
    return true;
}

void VoNetworker::endWait()
{
    if (blockingLoop && blockingLoop->isRunning())
        blockingLoop->exit(0);
}
