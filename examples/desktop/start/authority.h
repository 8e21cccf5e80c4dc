#pragma once

#include <QString>

/// The authority that signed the certificate of the service, besides those of the system. It is
/// remembered for the next start and for other windows.
namespace Authority {

/// Trusts the authority in the file @p path from now on. Returns why that is impossible; empty: it
/// is done.
QString trust(const QString &path);

/// Trusts the one that was trusted last, here or in another window, if it is still there.
void trustLast();

} // namespace Authority
