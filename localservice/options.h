#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace localservice {

/// What the command line says.
struct Options
{
    int port = 8443;              ///< 0: any free one.
    std::string data;             ///< Folder for certificates and objects.
    std::int64_t token = 1;       ///< The access token that is accepted.
    int workers = 2;              ///< Tasks worked on at a time.
    int resultLifetime = 3600;    ///< Seconds.
    int credentialLifetime = 900; ///< Seconds.
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
