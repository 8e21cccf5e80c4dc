// Fuzzes how the local service reads its command line. Each line of the input is an argument.

#include "input.h"
#include "localservice/options.h"

using namespace localservice;

namespace {

void check(const Options &options)
{
    require(options.port >= 0 && options.port <= 65535, "a port is one");
    require(options.workers >= 1 && options.workers <= 16, "there are some workers");
    for (const int lifetime :
         {options.resultLifetime, options.credentialLifetime, options.codeLifetime,
          options.tokenLifetime, options.refreshLifetime})
        require(lifetime >= 1 && lifetime <= 365 * 24 * 3600, "a lifetime is up to a year");
    require(options.help || !options.data.empty(), "there is a folder");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<std::string> arguments;
    for (Input input(data, size); !input.isAtEnd();)
        arguments.push_back(input.line());
    try {
        check(parseOptions(arguments));
    } catch (const UsageError &error) {
        require(*error.what() != '\0', "it says what is wrong");
    }
    return 0;
}
