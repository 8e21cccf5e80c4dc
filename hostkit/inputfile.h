#pragma once

class QString;

/// The recording that the user names.
namespace InputFile {

/// Whether @p recording is an address, which the service reads itself.
bool isAddress(const QString &recording);

/// Why the file @p path cannot be uploaded; empty: it can.
QString problem(const QString &path);

} // namespace InputFile
