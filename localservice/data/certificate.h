#pragma once

#include <filesystem>

namespace localservice {

/// The files that TLS needs, as PEM.
struct TlsFiles
{
    std::filesystem::path authority;   ///< The certificate that clients have to trust.
    std::filesystem::path certificate; ///< The server's, for localhost and 127.0.0.1.
    std::filesystem::path key;         ///< The server's, not encrypted.
};

/// Makes sure that @p folder, which is made if it is missing, holds a usable set of files: those of
/// an earlier start if they are valid for another day, new ones for 800 days otherwise. New ones
/// have the rights that the umask leaves. std::runtime_error if that fails, or if the authority is
/// not valid yet, which a clock that was set back makes it.
TlsFiles prepareTlsFiles(const std::filesystem::path &folder);

} // namespace localservice
