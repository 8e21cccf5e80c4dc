#pragma once

#include "http/httpcallbackfamilies.h"

#include <QPointer>
#include <QString>
#include <QVariant>

#include <type_traits>
#include <utility>

/// How the typed conveniences of HttpRequest, onFinished() and so on, make a callback entry of
/// their arguments. A callable, or a member of a receiver, becomes one of the std::function types
/// by the parameter list that it declares. Everything here is decided at compile time; hosts have
/// no use for it beside those operations.
namespace HttpCallbackForms {

/// The form of a callable: a function type that returns void and takes its parameters by value. A
/// class with no call operator, with several or with a templated one has the form void, which fits
/// no family.
template <typename Callable, typename = void>
struct FormOf
{
    using Type = void; ///< The form, or void.
};
/// @cond
template <typename Callable>
struct FormOf<Callable, std::void_t<decltype(&Callable::operator())>>
    : FormOf<decltype(&Callable::operator())>
{
};
template <typename Result, typename... Parameters>
struct FormOf<Result (*)(Parameters...)>
{
    using Type = void(std::decay_t<Parameters>...);
};
template <typename Result, typename... Parameters>
struct FormOf<Result (*)(Parameters...) noexcept> : FormOf<Result (*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct FormOf<Result (Class::*)(Parameters...)>
{
    using Type = void(std::decay_t<Parameters>...);
};
template <typename Result, typename Class, typename... Parameters>
struct FormOf<Result (Class::*)(Parameters...) const> : FormOf<Result (Class::*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct FormOf<Result (Class::*)(Parameters...) noexcept> : FormOf<Result (Class::*)(Parameters...)>
{
};
template <typename Result, typename Class, typename... Parameters>
struct FormOf<Result (Class::*)(Parameters...) const noexcept>
    : FormOf<Result (Class::*)(Parameters...)>
{
};

/// @endcond

/// The form of @p Callable, references and const apart.
template <typename Callable>
using FormOfT = typename FormOf<std::decay_t<Callable>>::Type;

/// Whether a callable, or a member of a receiver, has a form of the family @p Kind.
template <CallbackKind Kind, typename Callable>
constexpr bool hasForm = HttpCallbackFamily<Kind>::Forms::template has<FormOfT<Callable>>;

/// Whether (receiver, target) names a slot by its text.
template <typename Receiver, typename Target>
constexpr bool namesSlot =
    std::is_convertible_v<Receiver, const QObject *> // a receiver
    && (std::is_convertible_v<Target,
                              const char *> || std::is_same_v<std::decay_t<Target>, QString>);

/// Whether (receiver, target) is a receiver with a member function of a form of the family.
template <CallbackKind Kind, typename Receiver, typename Target>
constexpr bool isMember = std::is_convertible_v<Receiver, const QObject *> // a receiver
    &&std::is_member_function_pointer_v<std::decay_t<Target>> &&hasForm<Kind, Target>;

/// Whether the arguments of a typed convenience fit the family @p Kind.
template <CallbackKind Kind, typename... Arguments>
struct Fits : std::false_type
{
};
template <CallbackKind Kind, typename Callable>
struct Fits<Kind, Callable>
    : std::bool_constant<
          !std::is_member_function_pointer_v<std::decay_t<Callable>> && hasForm<Kind, Callable>>
{
};
template <CallbackKind Kind, typename Receiver, typename Target>
struct Fits<Kind, Receiver, Target>
    : std::bool_constant<namesSlot<Receiver, Target> || isMember<Kind, Receiver, Target>>
{
};

/// A callback entry as HttpRequest::bind() takes it.
struct Entry
{
    QString key;     ///< The slot text, or the name of a std::function type.
    QVariant target; ///< The receiver, which is not owned, or the function.
};

/// The entry of a std::function; its key is the registered name of its type.
template <typename Function>
Entry functionEntry(const Function &function)
{
    const QVariant target = QVariant::fromValue(function);
    return {QString::fromLatin1(target.typeName()), target};
}

/// The entry of a slot text; the receiver is not owned.
inline Entry slotEntry(const QObject *receiver, const QString &slot)
{
    return {slot, QVariant::fromValue(const_cast<QObject *>(receiver))};
}

/// @p slot, which SLOT() has made, as a key; null for null.
QString slotKey(const char *slot);

/// The same for a slot text as SLOT() makes it.
inline Entry slotEntry(const QObject *receiver, const char *slot)
{
    return slotEntry(receiver, slotKey(slot));
}

/// A function that calls @p method of @p receiver, and does nothing once the receiver is gone. The
/// last argument is never used: its type names the parameters.
template <typename Receiver, typename Method, typename... Parameters>
std::function<void(Parameters...)> guarded(Receiver *receiver, Method method,
                                           void (*)(Parameters...))
{
    return [guard = QPointer<Receiver>(receiver), method](Parameters... parameters) {
        if (guard)
            (guard.data()->*method)(std::move(parameters)...);
    };
}

/// The entry of a callable that fits.
template <typename Callable>
Entry entry(Callable &&callable)
{
    return functionEntry(std::function<FormOfT<Callable>>(std::forward<Callable>(callable)));
}

/// The entry of a receiver with a slot text or with a member that fits.
template <typename Receiver, typename Target>
Entry entry(Receiver *receiver, Target &&target)
{
    if constexpr (namesSlot<Receiver *, Target>)
        return slotEntry(receiver, std::forward<Target>(target));
    else
        return functionEntry(guarded(receiver, target, static_cast<FormOfT<Target> *>(nullptr)));
}

} // namespace HttpCallbackForms
