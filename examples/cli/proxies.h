#pragma once

#include <optional>

class QString;

/// The proxies on the way to servers. Qt itself never uses one for addresses of this machine.
namespace Proxies {

/// Sends every request from now on through the proxy @p address; empty: through none. Without an
/// address the usual environment variables say which, or the system's settings when none of them is
/// there. Why that is impossible, without repeating an address, which may hold a password; empty:
/// it is done.
///
/// What the environment says for http counts when @p destination, the first to be asked, begins
/// with it; from https nothing leads there.
QString use(const std::optional<QString> &address, const QString &destination);

/// Whether any is on the way to servers elsewhere.
bool areUsed();

} // namespace Proxies
