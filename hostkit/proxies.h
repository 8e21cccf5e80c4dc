#pragma once

#include <optional>

class QString;

/// The proxies on the way to servers. Qt itself never uses one for localhost and the
/// loopback addresses.
namespace Proxies {

/// Sends every request from now on through the proxy @p address; empty: through none. Without a
/// value the usual environment variables decide, or the system's settings when none of these is
/// set. Returns why that is impossible, without the address, which may hold a password; empty: it
/// is done.
///
/// The variables for http count only when @p destination, the first address to be asked, has that
/// scheme: no redirect leads from https to http.
QString use(const std::optional<QString> &address, const QString &destination);

/// Whether a proxy is on the way to servers on other machines.
bool areUsed();

} // namespace Proxies
