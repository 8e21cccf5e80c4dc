#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace localservice {

/// What the command line says.
struct Options
{
    int port = 8443;  ///< 0: any free one.
    std::string data; ///< Folder for everything that is kept.
    int workers = 2;  ///< Tasks worked on at a time.
    // Seconds.
    int resultLifetime = 3600;
    int credentialLifetime = 900;
    int codeLifetime = 300; ///< Of SMS codes and QR codes.
    int tokenLifetime = 7200;
    int refreshLifetime = 2592000;
    std::optional<std::int64_t> developmentToken; ///< Accepted without a sign-in.
    bool help = false;
};

/// A command line that cannot be followed; what() is one line.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments that follow the program's name; UsageError if they are wrong.
Options parseOptions(const std::vector<std::string> &arguments);

/// The text of --help.
std::string usage();

} // namespace localservice
