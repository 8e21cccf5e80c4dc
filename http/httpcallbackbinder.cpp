#include "http/httpcallbackbinder.h"

#include "http/httpcallbacktypes.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"

#include <QDebug>
#include <QHash>
#include <QMetaMethod>

#include <array>
#include <vector>

namespace {

constexpr int kindCount = 21;

/// A signal of HttpResponse that callbacks can be attached to.
struct TargetSignal
{
    int index;            ///< In the meta-object, so that it is not looked up by text each time.
    QByteArray signature; ///< As a string connection names it, "2name(arguments)".
    QString functionKey;  ///< The key of a callable with these arguments.
    bool (*connectFunction)(HttpResponse *response, const QVariant &function);
};

using Family = std::vector<TargetSignal>;

template <typename... Arguments>
struct With
{
    using Function = std::function<void(Arguments...)>;

    template <void (HttpResponse::*Signal)(Arguments...)>
    static bool connectFunction(HttpResponse *response, const QVariant &target)
    {
        const auto function = target.value<Function>();
        return function
               && QObject::connect(response, Signal, response, function, Qt::DirectConnection);
    }

    template <void (HttpResponse::*Signal)(Arguments...)>
    static TargetSignal of()
    {
        const QMetaMethod method = QMetaMethod::fromSignal(Signal);
        // The meta-object compiler spells qint64 as qlonglong; receivers spell it as they wrote it.
        QByteArray signature = '2' + method.methodSignature();
        signature.replace("qlonglong", "qint64");
        return {method.methodIndex(), signature,
                QString::fromLatin1(QMetaType::typeName(qMetaTypeId<Function>())),
                &connectFunction<Signal>};
    }
};

std::array<Family, kindCount> makeFamilies()
{
    using R = HttpResponse;
    std::array<Family, kindCount> all;
    const auto family = [&all](CallbackKind kind) -> Family & { return all.at(std::size_t(kind)); };

    family(CallbackKind::Finished) = {
        With<>::of<&R::finished>(), With<QByteArray>::of<&R::finished>(),
        With<QVariantMap>::of<&R::finished>(), With<QNetworkReply *>::of<&R::finished>(),
        With<QString>::of<&R::finished>()};
    family(CallbackKind::Error) = {With<>::of<&R::error>(), With<QByteArray>::of<&R::error>(),
                                   With<QNetworkReply *>::of<&R::error>(),
                                   With<QNetworkReply::NetworkError>::of<&R::error>()};
    family(CallbackKind::DownloadProgress) = {With<qint64, qint64>::of<&R::downloadProgress>()};
    family(CallbackKind::UploadProgress) = {With<qint64, qint64>::of<&R::uploadProgress>()};
    family(CallbackKind::Timeout) = {With<QNetworkReply *>::of<&R::timeout>(),
                                     With<>::of<&R::timeout>()};
    family(CallbackKind::ReadyRead) = {With<QNetworkReply *>::of<&R::readyRead>()};
    family(CallbackKind::DownloadFileFinished) = {With<>::of<&R::downloadFileFinished>(),
                                                  With<QString>::of<&R::downloadFileFinished>()};
    family(CallbackKind::DownloadFileError) = {With<>::of<&R::downloadFileError>(),
                                               With<QString>::of<&R::downloadFileError>()};
    family(CallbackKind::Encrypted) = {With<>::of<&R::encrypted>()};
    family(CallbackKind::MetaDataChanged) = {With<>::of<&R::metaDataChanged>()};
    family(CallbackKind::PreSharedKeyAuthenticationRequired) = {
        With<QSslPreSharedKeyAuthenticator *>::of<&R::preSharedKeyAuthenticationRequired>()};
    family(CallbackKind::RedirectAllowed) = {With<>::of<&R::redirectAllowed>()};
    family(CallbackKind::Redirected) = {With<QUrl>::of<&R::redirected>()};
    family(CallbackKind::SslErrors) = {With<QList<QSslError>>::of<&R::sslErrors>()};
    family(CallbackKind::Retried) = {With<>::of<&R::retried>()};
    family(CallbackKind::Repeated) = {With<>::of<&R::repeated>()};
    family(CallbackKind::AuthenticationRequired) = {
        With<QAuthenticator *>::of<&R::authenticationRequired>()};
    family(CallbackKind::AuthenticationRequireFailed) = {
        With<>::of<&R::authenticationRequireFailed>(),
        With<QNetworkReply *>::of<&R::authenticationRequireFailed>()};
    family(CallbackKind::Head) = {With<QList<QNetworkReply::RawHeaderPair>>::of<&R::head>(),
                                  With<QMap<QString, QString>>::of<&R::head>()};
    family(CallbackKind::DownloadFileProgress) = {
        With<qint64, qint64>::of<&R::downloadFileProgress>()};
    family(CallbackKind::DownloadFileNameChanged) = {
        With<QString>::of<&R::downloadFileNameChanged>()};
    return all;
}

/// Null for a kind that does not exist.
const Family *familyOf(int kind)
{
    static const std::array<Family, kindCount> families = makeFamilies();
    return kind >= 0 && kind < kindCount ? &families[std::size_t(kind)] : nullptr;
}

/// The code that begins a string-connection member: method, slot and signal are 0, 1 and 2.
constexpr int methodCode = 0;
constexpr int slotCode = 1;
constexpr int signalCode = 2;

int memberCode(const QString &key) { return key.isEmpty() ? -1 : key.at(0).unicode() & 3; }

bool namesMember(const QString &key)
{
    const int code = memberCode(key);
    return code == methodCode || code == slotCode || code == signalCode;
}

/// What a key under one kind comes to for a class of receivers.
struct Member
{
    int index = -1;           ///< In the class's meta-object; -1: there is no such member.
    QByteArray declared;      ///< The signature that the meta-object has at the index.
    std::vector<int> fitting; ///< The signals whose arguments begin with the member's own.
};

// The rules are those of a string connection.
Member findMember(const QMetaObject *metaObject, int kind, const QString &key)
{
    // Qt compares argument lists from the bracket on and would run past a text without one.
    if (!key.contains(QLatin1Char('(')))
        return {};
    Member member;
    const QByteArray signature =
        QMetaObject::normalizedSignature(key.mid(1).toLatin1().constData());
    if (memberCode(key) == slotCode)
        member.index = metaObject->indexOfSlot(signature.constData());
    else if (memberCode(key) == signalCode)
        member.index = metaObject->indexOfSignal(signature.constData());
    if (member.index < 0)
        return member;
    member.declared = metaObject->method(member.index).methodSignature();
    for (const TargetSignal &signal : *familyOf(kind)) {
        if (QMetaObject::checkConnectArgs(signal.signature.constData(), signature.constData()))
            member.fitting.push_back(signal.index);
    }
    return member;
}

// Finding a member by its text costs more than all else that attaching does, and hosts bind the
// same few members over and over, so what was found is kept, for each thread by itself. A
// meta-object made at run time may have gone and another stand in its place: an entry is good for
// as long as the method at its index is still the one that was found.
const Member &memberOf(const QMetaObject *metaObject, int kind, const QString &key)
{
    constexpr int mostEntries = 1024;
    thread_local QHash<QPair<QPair<const QMetaObject *, int>, QString>, Member> found;
    const auto place = qMakePair(qMakePair(metaObject, kind), key);
    const auto known = found.constFind(place);
    if (known != found.constEnd() && known->index >= 0
        && metaObject->method(known->index).methodSignature() == known->declared)
        return *known;
    if (found.size() >= mostEntries)
        found.clear();
    return *found.insert(place, findMember(metaObject, kind, key));
}

int attachMember(HttpResponse *response, int kind, const QString &key, const QVariant &target)
{
    auto *receiver = target.value<QObject *>();
    if (!receiver)
        return 0;
    const Member &member = memberOf(receiver->metaObject(), kind, key);
    int attached = 0;
    for (const int signal : member.fitting)
        attached += int(bool(QMetaObject::connect(response, signal, receiver, member.index)));
    return attached;
}

int attachFunction(HttpResponse *response, const Family &family, const QString &key,
                   const QVariant &target)
{
    int attached = 0;
    for (const TargetSignal &signal : family) {
        if (key == signal.functionKey)
            attached += int(signal.connectFunction(response, target));
    }
    return attached;
}

/// The number of connections made for one entry.
int attachEntry(HttpResponse *response, int kind, const QString &key, const QVariant &target)
{
    const Family *family = familyOf(kind);
    if (!family)
        return 0;
    return namesMember(key) ? attachMember(response, kind, key, target)
                            : attachFunction(response, *family, key, target);
}

void warnOfEntry(int kind, const QString &key)
{
    if (!familyOf(kind))
        qWarning().noquote() << QStringLiteral("%1 unsupported").arg(kind);
    qWarning().noquote() << QStringLiteral("%1 method[%2] is invalid")
                                .arg(QString::number(kind), namesMember(key) ? key.mid(1) : key);
}

} // namespace

void HttpCallbackBinder::attach(HttpResponse *response, const HttpRequestFields &request)
{
    const auto &callbacks = request.callbacks;
    for (auto it = callbacks.cbegin(); it != callbacks.cend(); ++it) {
        for (const auto &[key, target] : it.value()) {
            if (attachEntry(response, it.key(), key, target) == 0 && request.logLevel >= 3)
                warnOfEntry(it.key(), key);
        }
    }
}
