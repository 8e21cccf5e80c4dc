#pragma once

#include "hostkit/reason.h"

/// What Qt's errors mean for the user.
namespace NetworkReason {

/// Of the text of an error. With an @p address the reason names the server that did not answer.
Reason ofText(const QString &text, const QString &address = {});

/// The same of the name of a QNetworkReply::NetworkError.
Reason ofName(const QString &name, const QString &address);

/// A proxy wants a user, or another one.
Reason proxyWantsUser();

} // namespace NetworkReason
