// Fuzzes how the library reads replies, and what it tells the host of them. The first byte of the
// input names the operation, with a capital letter its slot for failures; the rest is the body.

#include "input.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"
#include "qthost.h"
#include "tests/network/answers.h"
#include "tests/network/records.h"
#include "tests/support/leaks.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <array>
#include <optional>

namespace {

struct Operation
{
    const char *name = nullptr;                   ///< Of its slots, without "slot" and "Suc".
    const char *signal = nullptr;                 ///< That answers it; null: it returns a result.
    QString (*result)(VoNetworkIntf *) = nullptr; ///< Calls a synchronous operation.
};

template <typename Record>
QString writtenAndFreed(const QList<Record *> &records)
{
    QString text = written(records);
    qDeleteAll(records);
    return text;
}

const std::array<Operation, 15> operations{{
    {"GetOssSign", "signalGetOssSign"},
    {"ShortSTT", "signalShortSTT"},
    {"CreateSTTTask", "signalCreateSTTTask"},
    {"GetSTTRet", "signalGetSTTResult"},
    {"TTS", "signalTTSRet"},
    {"LongTTSTask", "signalLongTTSTask"},
    {"LongTTSTaskStatus", "signalGetLongTTSResult"},
    {"GetBgmList", nullptr,
     [](VoNetworkIntf *service) { return writtenAndFreed(service->GetBgmList()); }},
    {"GetDubList", nullptr,
     [](VoNetworkIntf *service) { return writtenAndFreed(service->GetDubList()); }},
    {"GetUpdateInfo", nullptr,
     [](VoNetworkIntf *service) { return written(service->GetUpdateInfo()); }},
    {"GetLoginQrCode", "signalGetLoginQrCodeEnd"},
    {"GetLoginQrCodeStatus", "signalGetLoginQrCodeStatusEnd"},
    {"SendSmsVerifyCode", "signalSendSmsEnd"},
    {"SmsLogin", "signalSmsLoginEnd"},
    {"RefreshToken", "signalRefreshTokenEnd"},
}};

/// A service object that is never released: it keeps the last UpdateInfo, and making another would
/// start a process each time.
VoNetworkIntf *makeService()
{
    QDir::temp().mkpath(QStringLiteral("VoTTS"));
    return VoNetwork::CreateVoNetworkIntf();
}

/// The signals that are emitted for @p body, or the result of a synchronous operation.
QStringList outcomeOf(const Operation &operation, const char *ending, const QByteArray &body)
{
    static VoNetworkIntf *const service = makeService();
    Answers answers(service);
    const QByteArray slot = QByteArray("slot") + operation.name + ending;
    const auto type = operation.result ? Qt::QueuedConnection : Qt::DirectConnection;
    require(QMetaObject::invokeMethod(service, slot.constData(), type, Q_ARG(QByteArray, body)),
            "the slot is there");
    QStringList outcome;
    if (operation.result)
        outcome.append(operation.result(service));
    QtHost::settle();
    return outcome + answers.calls();
}

bool isSuccess(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonValue code = document.object().value(QLatin1String("code"));
    return !code.isUndefined() && !code.isNull() && code.toInt() == 0;
}

int membersIn(const QByteArray &json)
{
    int members = 0;
    bool isInText = false;
    for (int i = 0; i < json.size(); ++i) {
        if (json[i] == '"')
            isInText = !isInText;
        else if (isInText)
            i += int(json[i] == '\\');
        else
            members += int(json[i] == ':');
    }
    return members;
}

// Whether Qt may leak when it reads @p body: Qt 5.15.8 leaks an object or array whose key comes
// again. A document that does not parse may have such a key too.
bool mayLeak(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return document.isNull() || membersIn(document.toJson()) != membersIn(body);
}

// Whether @p body has the address of a file of this machine: some files have no end.
bool namesFile(const QByteArray &body)
{
    const QString text = QJsonDocument::fromJson(body)[QLatin1String("data")]
                             .toObject()
                             .value(QLatin1String("url"))
                             .toString();
    const QUrl address(text, QUrl::TolerantMode);
    return address.isLocalFile() || address.scheme() == QLatin1String("qrc");
}

void checkCount(const Operation &operation, const QStringList &outcome, bool succeeded)
{
    // A code whose picture cannot be fetched is answered by null and then the record.
    const bool mayBeTwo =
        succeeded && qstrcmp(operation.name, "GetLoginQrCode") == 0 && outcome.size() == 2;
    require(outcome.size() == 1 || mayBeTwo, "there is exactly one answer");
    for (const QString &call : outcome) {
        require(!operation.signal
                    || call.startsWith(QLatin1String(operation.signal) + QLatin1Char('(')),
                "the answer is the operation's own signal");
    }
}

void checkAlike(const Operation &operation, const QByteArray &body, bool succeeded,
                const QStringList &outcome)
{
    if (!succeeded)
        require(outcome == outcomeOf(operation, "Suc", QByteArray()),
                "every reply that brings nothing is answered alike");
    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isNull())
        require(outcome == outcomeOf(operation, "Suc", document.toJson()),
                "how a reply is laid out makes no difference");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    Input input(data, size);
    const unsigned letter = input.byte();
    const Operation &operation = operations[(letter | 0x20U) % operations.size()];
    const bool isFailure = letter >= 'A' && letter <= 'Z';
    const QByteArray body = QByteArray::fromStdString(input.rest());

    std::optional<LeaksAllowed> leaks(std::in_place);
    if (namesFile(body))
        return 0;
    const bool succeeded = !isFailure && isSuccess(body);
    if (!mayLeak(body))
        leaks.reset();
    const QStringList outcome = outcomeOf(operation, isFailure ? "Fail" : "Suc", body);
    checkCount(operation, outcome, succeeded);
    if (!isFailure)
        checkAlike(operation, body, succeeded, outcome);
    return 0;
}
