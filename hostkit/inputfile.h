#pragma once

class QString;

/// Checks of a recording that the user names, a file of this machine or an address.
namespace InputFile {

/// Whether @p recording is an address, which the service reads itself.
bool isAddress(const QString &recording);

/// Why the file @p path cannot be uploaded; empty: it can.
QString problem(const QString &path);

} // namespace InputFile
