#include "http/httpcallbackbinder.h"

#include "http/httpcallbackfamilies.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "http/ofthisthread.h"

#include <QDebug>
#include <QHash>
#include <QMetaMethod>
#include <QPointer>

#include <vector>

namespace {

/// A signal of HttpResponse that callbacks can be attached to.
struct TargetSignal
{
    int index;            ///< In the meta-object, so that it is not looked up by text each time.
    QByteArray signature; ///< As a string connection names it, "2name(arguments)".
    QLatin1String functionKey; ///< The key of a callable with these arguments.
    bool (*connectFunction)(HttpResponse *response, const QVariant &function);
};

using Family = std::vector<TargetSignal>;

template <auto Signal, typename Function>
bool connectFunction(HttpResponse *response, const QVariant &target)
{
    const auto function = target.value<Function>();
    return function && QObject::connect(response, Signal, response, function, Qt::DirectConnection);
}

template <CallbackKind Kind, typename Signature>
TargetSignal targetSignal()
{
    using Function = std::function<Signature>;
    constexpr auto signal = HttpCallbackFamily<Kind>::template signal<HttpResponse, Signature>;
    const QMetaMethod method = QMetaMethod::fromSignal(signal);
    // The meta-object compiler spells qint64 as qlonglong, slot texts have it as it was written.
    QByteArray signature = '2' + method.methodSignature();
    signature.replace("qlonglong", "qint64");
    return {method.methodIndex(), signature,
            QLatin1String(QMetaType::typeName(qMetaTypeId<Function>())),
            &connectFunction<signal, Function>};
}

template <CallbackKind Kind, typename... Signatures>
const Family &familyOf(HttpCallbackFormList<Signatures...>)
{
    static const Family family{targetSignal<Kind, Signatures>()...};
    return family;
}

/// Null for a kind that does not exist.
const Family *familyOf(int kind)
{
    switch (CallbackKind(kind)) {
#define VOHTTP_FAMILY_CASE(KIND, ...)                                                              \
    case CallbackKind::KIND:                                                                       \
        return &familyOf<CallbackKind::KIND>(HttpCallbackFamily<CallbackKind::KIND>::Forms());
        VOHTTP_CALLBACK_FAMILIES(VOHTTP_FAMILY_CASE)
#undef VOHTTP_FAMILY_CASE
    }
    return nullptr;
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

/// What a slot text names in a class of receivers, and the signals of one kind that it fits.
struct Member
{
    int index = -1;             ///< In the class's meta-object; -1: there is no such member.
    QByteArray name;            ///< What the meta-object has at the index,
    std::vector<int> arguments; ///< and the meta-types of its arguments.
    std::vector<int> fitting;   ///< Indices of the signals whose arguments begin with the member's.
};

/// Whether @p method is the one that was found; told without allocating anything.
bool isThe(const Member &member, const QMetaMethod &method)
{
    const auto count = std::size_t(method.parameterCount());
    if (count != member.arguments.size() || method.name() != member.name)
        return false;
    for (std::size_t i = 0; i < count; ++i) {
        if (method.parameterType(int(i)) != member.arguments[i])
            return false;
    }
    return true;
}

// The rules are those by which QObject::connect() takes texts.
Member findMember(const QMetaObject *metaObject, int kind, const QString &key)
{
    // Qt compares argument lists from the bracket on, and reads past the end of a text without one.
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
    const QMetaMethod method = metaObject->method(member.index);
    const QByteArray name = method.name();
    member.name = QByteArray(name.constData(), name.size()); // Qt's is a part of the meta-object
    member.arguments.resize(std::size_t(method.parameterCount()));
    for (std::size_t i = 0; i < member.arguments.size(); ++i)
        member.arguments[i] = method.parameterType(int(i));
    for (const TargetSignal &signal : *familyOf(kind)) {
        if (QMetaObject::checkConnectArgs(signal.signature.constData(), signature.constData()))
            member.fitting.push_back(signal.index);
    }
    return member;
}

// The search for a member by its text costs more than all else that attaching does, and hosts bind
// the same few members over and over: each thread keeps what it has found. A meta-object that was
// made at run time may be gone and another stand at its address, so an entry counts only while the
// method at its index is still the one that was found.
const Member &memberOf(const QMetaObject *metaObject, int kind, const QString &key)
{
    constexpr int mostEntries = 1024;
    auto &found = ofThisThread<QHash<QPair<QPair<const QMetaObject *, int>, QString>, Member>>();
    const auto place = qMakePair(qMakePair(metaObject, kind), key);
    const auto known = found.constFind(place);
    if (known != found.constEnd() && known->index >= 0
        && isThe(*known, metaObject->method(known->index)))
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

/// Whether @p target is a receiver that was watched and is gone.
bool isGone(const QVariant &target)
{
    return target.userType() == qMetaTypeId<QPointer<QObject>>() && !target.value<QObject *>();
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
    // Qt makes room for the connections of all signals up to the one that is connected, and anew
    // for one that is further on. Those of later kinds are, so the kinds are attached backwards.
    const auto &callbacks = request.callbacks;
    QMap<int, QStringList> misfits; // reported in the order of kinds
    for (auto it = callbacks.cend(); it != callbacks.cbegin();) {
        --it;
        for (const auto &[key, target] : it.value()) {
            if (attachEntry(response, it.key(), key, target) == 0 && !isGone(target))
                misfits[it.key()].append(key);
        }
    }
    if (request.logLevel < HttpLogLevel::BadBindings)
        return;
    for (auto it = misfits.cbegin(); it != misfits.cend(); ++it) {
        for (const QString &key : it.value())
            warnOfEntry(it.key(), key);
    }
}

void HttpCallbackBinder::watchReceivers(HttpRequestFields &request)
{
    for (HttpRequestFields::Callbacks &callbacks : request.callbacks) {
        for (auto &[key, target] : callbacks) {
            if (auto *receiver = target.value<QObject *>())
                target = QVariant::fromValue(QPointer<QObject>(receiver));
        }
    }
}
