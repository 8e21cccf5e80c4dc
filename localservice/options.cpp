#include "localservice/options.h"

#include <QCommandLineParser>

#include <array>
#include <cstdlib>

namespace localservice {

namespace {

constexpr int hour = 3600; // seconds
constexpr int week = 7 * 24 * hour;
constexpr int year = 365 * 24 * hour;

// An option that takes a number from least to most.
struct NumberOption
{
    const char *name;
    const char *value;
    const char *description;
    int Options::*member;
    int least;
    int most;
};

constexpr std::array<NumberOption, 7> numberOptions{{
    {"port", "N", "port to listen on, 0: any free one", &Options::port, 0, 65535},
    {"workers", "N", "tasks worked on at a time", &Options::workers, 1, 16},
    {"result-lifetime", "SECONDS", "how long results of tasks are kept", &Options::resultLifetime,
     1, week},
    {"credential-lifetime", "SECONDS", "how long upload credentials are valid",
     &Options::credentialLifetime, 1, week},
    {"code-lifetime", "SECONDS", "how long SMS and QR codes are valid", &Options::codeLifetime, 1,
     hour},
    {"token-lifetime", "SECONDS", "how long access tokens are valid", &Options::tokenLifetime, 1,
     week},
    {"refresh-lifetime", "SECONDS", "how long refresh tokens are valid", &Options::refreshLifetime,
     1, year},
}};

// Arguments are bytes that need not be text. As Latin-1 each is a character, and none is lost.
QString toText(const std::string &bytes)
{
    return QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
}

std::string toBytes(const QString &text) { return text.toLatin1().toStdString(); }

std::int64_t number(const QCommandLineParser &parser, const char *name, std::int64_t least,
                    std::int64_t most)
{
    bool isNumber = false;
    const qint64 result = parser.value(QLatin1String(name)).toLongLong(&isNumber);
    if (!isNumber || result < least || result > most)
        throw UsageError("--" + std::string(name) + " takes a number from " + std::to_string(least)
                         + " to " + std::to_string(most));
    return result;
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

QCommandLineOption withValue(const QString &name)
{
    return {name, QString(), QStringLiteral("value")};
}

std::string line(const std::string &option, const std::string &description)
{
    constexpr std::size_t width = 31;
    return "  --" + option + std::string(width - option.size() - 2, ' ') + description + '\n';
}

} // namespace

Options parseOptions(const std::vector<std::string> &arguments)
{
    QCommandLineParser parser;
    const QString help = QStringLiteral("help");
    const QString data = QStringLiteral("data");
    const QString token = QStringLiteral("development-token");
    parser.addOptions({QCommandLineOption(help), withValue(data), withValue(token)});
    for (const NumberOption &option : numberOptions)
        parser.addOption(withValue(QLatin1String(option.name)));
    QStringList texts{QString()}; // in the place of the program's name
    for (const std::string &argument : arguments)
        texts.append(toText(argument));
    if (!parser.parse(texts))
        throw UsageError(toBytes(parser.errorText()));
    if (!parser.positionalArguments().isEmpty())
        throw UsageError("there are only options");

    Options options;
    for (const NumberOption &option : numberOptions)
        if (parser.isSet(QLatin1String(option.name)))
            options.*option.member =
                static_cast<int>(number(parser, option.name, option.least, option.most));
    if (parser.isSet(token))
        options.developmentToken = number(parser, "development-token", INT64_MIN, INT64_MAX);
    options.help = parser.isSet(help);
    options.data = toBytes(parser.value(data));
    if (options.data.empty() && parser.isSet(data))
        throw UsageError("--data takes a folder");
    if (options.data.empty() && !options.help)
        options.data = defaultDataFolder();
    return options;
}

std::string usage()
{
    std::string text =
        "usage: vo-localservice [OPTION VALUE]...\n"
        "A speech web service on this machine, at https://localhost:PORT.\n\n"
        + line("data DIR", "everything that is kept ($XDG_DATA_HOME/vo-localservice)");
    for (const NumberOption &option : numberOptions)
        text += line(std::string(option.name) + ' ' + option.value,
                     std::string(option.description) + " ("
                         + std::to_string(Options().*option.member) + ')');
    return text + line("development-token N", "accept this access token without a sign-in")
           + line("help", "show this text");
}

} // namespace localservice
