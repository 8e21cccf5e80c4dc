#pragma once

#include "hostkit/reason.h"

/// What Qt's errors mean for the user.
namespace NetworkReason {

/// Of the text of an error, at @p address.
Reason ofText(const QString &text, const QString &address);

/// Of the name of a QNetworkReply::NetworkError, at @p address.
Reason ofName(const QString &name, const QString &address);

/// A proxy wants a user, or another one.
Reason proxyWantsUser();

} // namespace NetworkReason
