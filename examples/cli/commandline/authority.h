#pragma once

class QString;
struct Options;

namespace Authority {

/// The PEM file with the authorities that are trusted besides the system's: that of --ca, of the
/// variable VOSPEAK_CA, or of the line ca=FILE in vospeak.conf (in UTF-8), whichever comes first.
/// Empty: none is named.
QString of(const Options &options);

/// Why vospeak.conf cannot be read; empty: it can, or it is not needed.
QString problem(const Options &options);

/// Writes the line ca=@p path into vospeak.conf. False when that failed.
bool remember(const QString &path);

/// The path of vospeak.conf.
QString settings();

} // namespace Authority
