#pragma once

class QString;

namespace ServerAddress {

/// Whether @p address, which a server sent, may be read from or written to: its scheme is https and
/// it has a host. The library would take any that Qt can open, files of this machine among them.
bool isUsable(const QString &address);

} // namespace ServerAddress
