#include "localservice/options.h"

#include <array>
#include <cstdlib>
#include <limits>

namespace localservice {

namespace {

std::int64_t number(const std::string &name, const std::string &value, std::int64_t least,
                    std::int64_t most)
{
    const std::size_t digits = !value.empty() && value[0] == '-' ? 1 : 0;
    try {
        if (value.size() > digits
            && value.find_first_not_of("0123456789", digits) == std::string::npos) {
            const std::int64_t result = std::stoll(value);
            if (result >= least && result <= most)
                return result;
        }
    } catch (const std::out_of_range &) {
        // Reported below, together with what is within 64 bits and yet beyond the limits.
    }
    throw UsageError(name + " takes a number from " + std::to_string(least) + " to "
                     + std::to_string(most));
}

std::string defaultDataFolder()
{
    const char *data = std::getenv("XDG_DATA_HOME");
    if (data && *data == '/')
        return std::string(data) + "/vo-localservice";
    const char *home = std::getenv("HOME");
    if (home && *home)
        return std::string(home) + "/.local/share/vo-localservice";
    throw UsageError("there is no home folder: --data has to be given");
}

// Only those whose value is a number of seconds.
bool setLifetime(Options &options, const std::string &name, const std::string &value)
{
    constexpr int hour = 3600;
    constexpr int week = 7 * 24 * hour;
    constexpr int year = 365 * 24 * hour;
    struct Lifetime
    {
        const char *name;
        int Options::*member;
        int longest;
    };
    constexpr std::array<Lifetime, 5> lifetimes{{
        {"--result-lifetime", &Options::resultLifetime, week},
        {"--credential-lifetime", &Options::credentialLifetime, week},
        {"--code-lifetime", &Options::codeLifetime, hour},
        {"--token-lifetime", &Options::tokenLifetime, week},
        {"--refresh-lifetime", &Options::refreshLifetime, year},
    }};
    for (const Lifetime &lifetime : lifetimes) {
        if (name == lifetime.name) {
            options.*lifetime.member = static_cast<int>(number(name, value, 1, lifetime.longest));
            return true;
        }
    }
    return false;
}

void setOption(Options &options, const std::string &name, const std::string &value)
{
    if (name == "--port")
        options.port = static_cast<int>(number(name, value, 0, 65535));
    else if (name == "--data" && !value.empty())
        options.data = value;
    else if (name == "--data")
        throw UsageError("--data takes a folder");
    else if (name == "--development-token")
        options.developmentToken = number(name, value, std::numeric_limits<std::int64_t>::min(),
                                          std::numeric_limits<std::int64_t>::max());
    else if (name == "--workers")
        options.workers = static_cast<int>(number(name, value, 1, 16));
    else if (!setLifetime(options, name, value))
        throw UsageError("unknown option \"" + name + "\"");
}

} // namespace

Options parseOptions(const std::vector<std::string> &arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &name = arguments[i];
        if (name == "--help") {
            options.help = true;
            continue;
        }
        // No option takes an empty value, so a missing one is refused like an empty one.
        ++i;
        setOption(options, name, i < arguments.size() ? arguments[i] : std::string());
    }
    if (options.data.empty() && !options.help)
        options.data = defaultDataFolder();
    return options;
}

std::string usage()
{
    return "usage: vo-localservice [OPTION VALUE]...\n"
           "A speech web service on this machine, at https://localhost:PORT.\n"
           "\n"
           "  --port N                       port to listen on (8443), 0: any free one\n"
           "  --data DIR                     folder for everything that is kept\n"
           "                                 ($XDG_DATA_HOME/vo-localservice)\n"
           "  --workers N                    tasks worked on at a time (2)\n"
           "  --result-lifetime SECONDS      how long results of tasks are kept (3600)\n"
           "  --credential-lifetime SECONDS  how long upload credentials are valid (900)\n"
           "  --code-lifetime SECONDS        how long SMS and QR codes are valid (300)\n"
           "  --token-lifetime SECONDS       how long access tokens are valid (7200)\n"
           "  --refresh-lifetime SECONDS     how long refresh tokens are valid (2592000)\n"
           "  --development-token N          accept this access token without a sign-in\n"
           "  --help                         show this text\n";
}

} // namespace localservice
