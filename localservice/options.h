#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace localservice {

/// The settings of the service, as the command line has them.
struct Options
{
    int port = 8443;               ///< Up to 65535; 0: any free one.
    std::string data;              ///< Folder for everything that is kept; need not be text.
    int workers = 2;               ///< Tasks worked on at a time, 1 to 16.
    int resultLifetime = 3600;     ///< Of what tasks have made. Seconds, 1 to a week.
    int credentialLifetime = 900;  ///< Of upload credentials. Seconds, 1 to a week.
    int codeLifetime = 300;        ///< Of SMS codes and QR codes. Seconds, 1 to an hour.
    int tokenLifetime = 7200;      ///< Of access tokens. Seconds, 1 to a week.
    int refreshLifetime = 2592000; ///< Of refresh tokens. Seconds, 1 to 365 days.
    /// An access token that is accepted without a sign-in, if there is one.
    std::optional<std::int64_t> developmentToken;
    bool help = false; ///< usage() is asked for, and nothing else.
};

/// A command line that cannot be followed; what() is one line.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Reads the arguments that follow the program's name, and takes the data folder from the
/// environment if they name none. UsageError if they are wrong or there is no home folder.
Options parseOptions(const std::vector<std::string> &arguments);

/// The text of --help.
std::string usage();

} // namespace localservice
