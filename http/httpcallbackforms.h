#pragma once

#include "http/httpcallbacktypes.h"
#include "http/httptypes.h"

#include <QPointer>
#include <QString>
#include <QVariant>

#include <type_traits>
#include <utility>

/// How the typed callback conveniences of HttpRequest turn a callable or a pointer to member into
/// one of the std::function types: by the parameter list that it declares.
namespace HttpCallbackForms {

/// The parameter list of a callable, each parameter without reference and const.
template <typename... Parameters>
struct ParameterList
{
    using Function = std::function<void(Parameters...)>;
};

template <typename... Parameters>
using PlainParameterList = ParameterList<std::decay_t<Parameters>...>;

/// Reads the parameter list off a callable. A class with no call operator, with several or with a
/// templated one has none that could be read.
template <typename Callable, typename = void>
struct ParametersOf
{
    using Type = void;
};
template <typename Callable>
struct ParametersOf<Callable, std::void_t<decltype(&Callable::operator())>>
    : ParametersOf<decltype(&Callable::operator())>
{
};
template <typename Result, typename... Parameters>
struct ParametersOf<Result (*)(Parameters...)>
{
    using Type = PlainParameterList<Parameters...>;
};
template <typename Result, typename... Parameters>
struct ParametersOf<Result (*)(Parameters...) noexcept> : ParametersOf<Result (*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct ParametersOf<Result (Class::*)(Parameters...)>
{
    using Type = PlainParameterList<Parameters...>;
};
template <typename Result, typename Class, typename... Parameters>
struct ParametersOf<Result (Class::*)(Parameters...) const>
    : ParametersOf<Result (Class::*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct ParametersOf<Result (Class::*)(Parameters...) noexcept>
    : ParametersOf<Result (Class::*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct ParametersOf<Result (Class::*)(Parameters...) const noexcept>
    : ParametersOf<Result (Class::*)(Parameters...)>
{
};

template <typename Callable>
using ParametersOfT = typename ParametersOf<std::decay_t<Callable>>::Type;

/// The forms that one callback family accepts.
template <typename... Lists>
struct Forms
{
    template <typename Callable>
    static constexpr bool accept = (std::is_same_v<ParametersOfT<Callable>, Lists> || ...);
};

template <CallbackKind Kind>
struct FormsOf;
template <>
struct FormsOf<CallbackKind::Finished>
    : Forms<ParameterList<>, ParameterList<QByteArray>, ParameterList<QVariantMap>,
            ParameterList<QNetworkReply *>, ParameterList<QString>>
{
};
template <>
struct FormsOf<CallbackKind::Error>
    : Forms<ParameterList<>, ParameterList<QByteArray>, ParameterList<QNetworkReply *>,
            ParameterList<QNetworkReply::NetworkError>>
{
};
template <>
struct FormsOf<CallbackKind::DownloadProgress> : Forms<ParameterList<qint64, qint64>>
{
};
template <>
struct FormsOf<CallbackKind::UploadProgress> : Forms<ParameterList<qint64, qint64>>
{
};
template <>
struct FormsOf<CallbackKind::Timeout> : Forms<ParameterList<QNetworkReply *>, ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::ReadyRead> : Forms<ParameterList<QNetworkReply *>>
{
};
template <>
struct FormsOf<CallbackKind::DownloadFileFinished> : Forms<ParameterList<>, ParameterList<QString>>
{
};
template <>
struct FormsOf<CallbackKind::DownloadFileError> : Forms<ParameterList<>, ParameterList<QString>>
{
};
template <>
struct FormsOf<CallbackKind::Encrypted> : Forms<ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::MetaDataChanged> : Forms<ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::PreSharedKeyAuthenticationRequired>
    : Forms<ParameterList<QSslPreSharedKeyAuthenticator *>>
{
};
template <>
struct FormsOf<CallbackKind::RedirectAllowed> : Forms<ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::Redirected> : Forms<ParameterList<QUrl>>
{
};
template <>
struct FormsOf<CallbackKind::SslErrors> : Forms<ParameterList<QList<QSslError>>>
{
};
template <>
struct FormsOf<CallbackKind::Retried> : Forms<ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::Repeated> : Forms<ParameterList<>>
{
};
template <>
struct FormsOf<CallbackKind::AuthenticationRequired> : Forms<ParameterList<QAuthenticator *>>
{
};
template <>
struct FormsOf<CallbackKind::AuthenticationRequireFailed>
    : Forms<ParameterList<>, ParameterList<QNetworkReply *>>
{
};
template <>
struct FormsOf<CallbackKind::Head> : Forms<ParameterList<QList<QNetworkReply::RawHeaderPair>>,
                                           ParameterList<QMap<QString, QString>>>
{
};
template <>
struct FormsOf<CallbackKind::DownloadFileProgress> : Forms<ParameterList<qint64, qint64>>
{
};
template <>
struct FormsOf<CallbackKind::DownloadFileNameChanged> : Forms<ParameterList<QString>>
{
};

/// Whether (receiver, target) names a slot by its text.
template <typename Receiver, typename Target>
constexpr bool namesSlot =
    std::is_convertible_v<Receiver, const QObject *> // a receiver
    && (std::is_convertible_v<Target,
                              const char *> || std::is_same_v<std::decay_t<Target>, QString>);

/// Whether (receiver, target) is a receiver with a member function of a form of the family.
template <CallbackKind Kind, typename Receiver, typename Target>
constexpr bool isMember = std::is_convertible_v<Receiver, const QObject *> // a receiver
    &&std::is_member_function_pointer_v<std::decay_t<Target>>
        &&FormsOf<Kind>::template accept<Target>;

/// Whether the arguments of a typed convenience fit the family @p Kind.
template <CallbackKind Kind, typename... Arguments>
struct Fits : std::false_type
{
};
template <CallbackKind Kind, typename Callable>
struct Fits<Kind, Callable>
    : std::bool_constant<!std::is_member_function_pointer_v<
                             std::decay_t<Callable>> && FormsOf<Kind>::template accept<Callable>>
{
};
template <CallbackKind Kind, typename Receiver, typename Target>
struct Fits<Kind, Receiver, Target>
    : std::bool_constant<namesSlot<Receiver, Target> || isMember<Kind, Receiver, Target>>
{
};

/// A callback entry as HttpRequest::bind takes it.
struct Entry
{
    QString key;
    QVariant target;
};

template <typename Function>
Entry functionEntry(const Function &function)
{
    const QVariant target = QVariant::fromValue(function);
    return {QString::fromLatin1(target.typeName()), target};
}

inline Entry slotEntry(const QObject *receiver, const QString &slot)
{
    return {slot, QVariant::fromValue(const_cast<QObject *>(receiver))};
}

inline Entry slotEntry(const QObject *receiver, const char *slot)
{
    return slotEntry(receiver, QString::fromLatin1(slot));
}

/// A function that calls @p method of @p receiver for as long as the receiver lives.
template <typename Receiver, typename Method, typename... Parameters>
std::function<void(Parameters...)> guarded(Receiver *receiver, Method method,
                                           ParameterList<Parameters...>)
{
    return [guard = QPointer<Receiver>(receiver), method](Parameters... parameters) {
        if (guard)
            (guard.data()->*method)(std::move(parameters)...);
    };
}

template <typename Callable>
Entry entry(Callable &&callable)
{
    using Function = typename ParametersOfT<Callable>::Function;
    return functionEntry(Function(std::forward<Callable>(callable)));
}

template <typename Receiver, typename Target>
Entry entry(Receiver *receiver, Target &&target)
{
    if constexpr (namesSlot<Receiver *, Target>)
        return slotEntry(receiver, std::forward<Target>(target));
    else
        return functionEntry(guarded(receiver, target, ParametersOfT<Target>()));
}

} // namespace HttpCallbackForms
