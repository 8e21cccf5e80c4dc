// Fuzzes how vospeak reads its command line. Each line of the input is an argument.

#include "examples/cli/commandline.h"
#include "input.h"
#include "qthost.h"

#include <QUrl>

#include <algorithm>

namespace {

// Whether the option @p letter is given, by itself or among letters that stand together.
bool isGiven(QChar letter, const QStringList &arguments)
{
    return std::any_of(arguments.cbegin(), arguments.cend(), [letter](const QString &argument) {
        return argument.startsWith(QLatin1Char('-')) && argument.contains(letter);
    });
}

void checkFetch(const Options &options, const QStringList &arguments)
{
    const QUrl address(options.address, QUrl::TolerantMode);
    require(address.scheme() == QLatin1String("https") || address.scheme() == QLatin1String("http"),
            "only web addresses are fetched");
    require(!options.output.isEmpty(), "a file that is fetched has a name");
    require(isGiven(QLatin1Char('o'), arguments)
                || (!options.output.contains(QLatin1Char('/'))
                    && options.output != QLatin1String(".")
                    && options.output != QLatin1String("..")),
            "a name from an address has no folder");
}

void checkLogin(const Options &options, const QStringList &arguments)
{
    require(options.phone == options.phone.trimmed(), "a number has no blanks around it");
    require(!options.phone.isEmpty() || isGiven(QLatin1Char('q'), arguments),
            "signing in is by number or by code");
}

void check(const Options &options, const QStringList &arguments)
{
    require(!options.anonymous || !options.token, "nobody has no token");
    switch (options.action) {
    case Options::Action::Say:
        require(!options.text.trimmed().isEmpty() && options.sampleRate > 0
                    && !options.output.isEmpty(),
                "what is said has a text, a rate and a file");
        break;
    case Options::Action::Recognize:
        require(!options.recording.isEmpty(), "what is recognised has a name");
        break;
    case Options::Action::Fetch:
        checkFetch(options, arguments);
        break;
    case Options::Action::Login:
        checkLogin(options, arguments);
        break;
    default:
        break;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    QStringList arguments(QStringLiteral("vospeak"));
    for (Input input(data, size); !input.isAtEnd();)
        arguments.append(QString::fromStdString(input.line()));
    const CommandLine commandLine(arguments);
    require(commandLine.problem().isEmpty() || commandLine.information().isEmpty(),
            "there is a problem or an information, not both");
    if (commandLine.problem().isEmpty() && commandLine.information().isEmpty())
        check(commandLine.options(), arguments);
    return 0;
}
