#pragma once

#include <filesystem>

namespace localservice {

/// The files that TLS needs, as PEM.
struct TlsFiles
{
    std::filesystem::path authority;   ///< What clients have to trust.
    std::filesystem::path certificate; ///< The server's, for localhost and 127.0.0.1.
    std::filesystem::path key;         ///< The server's; readable by its owner alone.
};

/// Makes sure that @p folder holds a usable set of files: those of an earlier start if they are
/// valid for another day, new ones otherwise. std::runtime_error if that fails or if they are not
/// valid yet, which a wrong clock makes them. It is the process's umask that makes new ones their
/// owner's alone.
TlsFiles prepareTlsFiles(const std::filesystem::path &folder);

} // namespace localservice
