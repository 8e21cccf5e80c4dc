#include "options.h"

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

void setOption(Options &options, const std::string &name, const std::string &value)
{
    constexpr int longestLifetime = 7 * 24 * 3600;
    if (name == "--port")
        options.port = static_cast<int>(number(name, value, 0, 65535));
    else if (name == "--data" && !value.empty())
        options.data = value;
    else if (name == "--data")
        throw UsageError("--data takes a folder");
    else if (name == "--token")
        options.token = number(name, value, std::numeric_limits<std::int64_t>::min(),
                               std::numeric_limits<std::int64_t>::max());
    else if (name == "--workers")
        options.workers = static_cast<int>(number(name, value, 1, 16));
    else if (name == "--result-lifetime")
        options.resultLifetime = static_cast<int>(number(name, value, 1, longestLifetime));
    else if (name == "--credential-lifetime")
        options.credentialLifetime = static_cast<int>(number(name, value, 1, longestLifetime));
    else
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
           "  --data DIR                     folder for certificates and objects\n"
           "                                 ($XDG_DATA_HOME/vo-localservice)\n"
           "  --token N                      access token that is accepted (1)\n"
           "  --workers N                    tasks worked on at a time (2)\n"
           "  --result-lifetime SECONDS      how long results of tasks are kept (3600)\n"
           "  --credential-lifetime SECONDS  how long upload credentials are valid (900)\n"
           "  --help                         show this text\n";
}

} // namespace localservice
