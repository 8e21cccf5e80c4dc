#pragma once

class QString;

namespace Trust {

/// Makes every TLS connection from now on trust the certificates in the PEM file @p path as well as
/// the system's. Returns why that is impossible; empty: it is done.
QString add(const QString &path);

} // namespace Trust
