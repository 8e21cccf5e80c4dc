// Fuzzes how vospeak reads its command line. Each line of the input is an argument.

#include "examples/cli/commandline/commandline.h"
#include "examples/cli/commandline/commandtable.h"
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

void checkSay(const Options &options)
{
    require(!options.textFile.isEmpty() || !options.speech.text.trimmed().isEmpty(),
            "what is said has a text");
    require(options.speech.sampleRate > 0 && (options.play || !options.output.isEmpty()),
            "what is said has a rate, and a file or a listener");
    require(!options.speech.isAnonymous || !options.token, "nobody has no token");
}

void check(const Options &options, const QStringList &arguments)
{
    const QLatin1String command(options.command->name);
    if (command == QLatin1String("say"))
        checkSay(options);
    else if (command == QLatin1String("recognize"))
        require(!options.subjects.contains(QString()), "what is recognised has a name");
    else if (command == QLatin1String("fetch"))
        checkFetch(options, arguments);
    else if (command == QLatin1String("login"))
        checkLogin(options, arguments);
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
