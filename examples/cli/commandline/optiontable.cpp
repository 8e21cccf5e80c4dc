#include "commandline/optiontable.h"

#include "commandline/options.h"
#include "hostkit/hostkit.h"
#include "hostkit/limits.h"

#include <QString>

#include <algorithm>
#include <limits>

namespace {

QString isNoNumber(const char *what, const QString &value, const QString &wanted)
{
    return QStringLiteral("the %1 \"%2\" is no %3").arg(QLatin1String(what), value, wanted);
}

QString readNumber(const char *what, const QString &value, qint32 least, qint32 most,
                   qint32 &number)
{
    bool isNumber = false;
    number = value.toInt(&isNumber);
    if (isNumber && number >= least && number <= most)
        return {};
    return isNoNumber(what, value, QStringLiteral("number from %1 to %2").arg(least).arg(most));
}

QString readRate(Options &options, const QString &value)
{
    bool isNumber = false;
    options.speech.sampleRate = value.toInt(&isNumber);
    if (isNumber && options.speech.sampleRate > 0)
        return {};
    return isNoNumber("rate", value, QStringLiteral("positive number"));
}

QString readFormat(Options &options, const QString &value)
{
    options.speech.format = value;
    if (value == QLatin1String("wav") || value == QLatin1String("pcm"))
        return {};
    return QStringLiteral("\"%1\" is no format; there are wav and pcm").arg(value);
}

QString readForm(Options &options, const QString &value)
{
    options.json |= value == QLatin1String("json");
    if (options.json || value == QLatin1String("txt"))
        return {};
    return QStringLiteral("\"%1\" is no form of output; there are txt and json").arg(value);
}

QString readToken(Options &options, const QString &value)
{
    bool isNumber = false;
    options.token = value.toLongLong(&isNumber);
    return isNumber ? QString() : isNoNumber("token", value, QStringLiteral("64-bit number"));
}

QString readPhone(Options &options, const QString &value)
{
    options.phone = value.trimmed();
    return options.phone.isEmpty() ? QStringLiteral("--sms needs the number of a phone")
                                   : QString();
}

QString readTimeout(Options &options, const QString &value)
{
    bool isNumber = false;
    const double seconds = value.toDouble(&isNumber);
    constexpr double most = std::numeric_limits<int>::max() / 1000.0;
    if (!isNumber || !(seconds >= 0.001 && seconds <= most)) // NaN is neither
        return isNoNumber("timeout", value, QStringLiteral("positive number of seconds"));
    options.timeout = int(seconds * 1000);
    return {};
}

QString readRecord(Options &options, const QString &value)
{
    return readNumber("length", value, 1, Limits::longRecording, options.record);
}

QString readColour(Options &options, const QString &value)
{
    if (value == QLatin1String("auto"))
        options.colour = Colour::Auto;
    else if (value == QLatin1String("always"))
        options.colour = Colour::Always;
    else if (value == QLatin1String("never"))
        options.colour = Colour::Never;
    else
        return QStringLiteral("--color takes auto, always or never");
    return {};
}

// The library is built for one service.
QString readServer(Options &, const QString &value)
{
    const QString only = HostKit::serviceAddress();
    if (value == only)
        return {};
    return QStringLiteral("this build asks %1 only: the address is compiled in "
                          "(VONETWORK_SERVICE_BASE_ADDRESS)")
        .arg(only);
}

template <auto member>
QString take(Options &options, const QString &value)
{
    options.*member = value;
    return {};
}

template <auto member>
QString set(Options &options, const QString &)
{
    options.*member = true;
    return {};
}

QString nothing(Options &, const QString &) { return {}; }

template <auto member>
QString takeSpeech(Options &options, const QString &value)
{
    options.speech.*member = value;
    return {};
}

template <auto member, qint32 least, qint32 most>
QString readLevel(Options &options, const QString &value)
{
    return readNumber("value", value, least, most, options.speech.*member);
}

QString setAnonymous(Options &options, const QString &)
{
    options.speech.isAnonymous = true;
    return {};
}

} // namespace

// A meaning has 54 characters at most, for the help to be one line.
const QVector<OptionRow> &OptionTable::rows()
{
    using O = Options;
    static const QVector<OptionRow> table{
        {"file", "f", "FILE", "reads the text from FILE; -: from standard input", nullptr,
         take<&O::textFile>},
        {"output", "o", "FILE", "the file for the audio; -: standard output", nullptr,
         take<&O::output>},
        {"output", "o", "FILE", "the file that gets what comes", nullptr, take<&O::output>,
         "fetch"},
        {"output", "o", "txt|json", "what is printed; json is --json", "txt", readForm,
         "recognize"},
        {"output", "o", "FILE", "the file for the audio of a long text", nullptr, take<&O::output>,
         "task"},
        {"record", nullptr, "SECONDS", "from the microphone (arecord or parecord)", nullptr,
         readRecord},
        {"play", nullptr, nullptr, "plays it (paplay, aplay or play)", nullptr, set<&O::play>},
        {"play", nullptr, nullptr, "plays the sample of a voice", nullptr, set<&O::play>, "voices"},
        {"voice", nullptr, "VOICE", "see vospeak voices", "rms", takeSpeech<&Speech::voice>},
        {"rate", nullptr, "HZ", "samples per second", "16000", readRate},
        {"speed", nullptr, "N", "-500 (slow) to 500 (fast)", "0",
         readLevel<&Speech::speed, -500, 500>},
        {"pitch", nullptr, "N", "-500 (low) to 500 (high)", "0",
         readLevel<&Speech::pitch, -500, 500>},
        {"volume", nullptr, "N", "0 to 100", "50", readLevel<&Speech::volume, 0, 100>},
        {"format", nullptr, "wav|pcm", "pcm: 16-bit samples without a head", "wav", readFormat},
        {"anonymous", nullptr, nullptr, "without signing in, up to 300 characters", nullptr,
         setAnonymous},
        {"long", nullptr, nullptr, "as a task, however short it is", nullptr, set<&O::longForm>},
        {"token", nullptr, "NUMBER", "in place of the session's; other users can read it", nullptr,
         readToken},
        {"resume", nullptr, nullptr, "goes on where an earlier run ended", nullptr,
         set<&O::resume>},
        {"status", nullptr, nullptr, "says whether it is done and waits for nothing", nullptr,
         set<&O::status>},
        {"qr", nullptr, nullptr, "by a code to scan", nullptr, set<&O::scan>},
        {"sms", nullptr, "NUMBER", "by a code that is sent to this phone", nullptr, readPhone},
        {"open", nullptr, nullptr, "with --qr: opens the picture of the code", nullptr,
         set<&O::open>},
        {"json", nullptr, nullptr, "the result, or the failure, as JSON", nullptr, set<&O::json>},
        {"ca", nullptr, "FILE", "trusts the certificates in this PEM file as well", nullptr,
         take<&O::authority>},
        {"proxy", nullptr, "URL", "asks through this proxy; \"\": through none", nullptr,
         [](Options &options, const QString &value) {
             options.proxy = value;
             return QString();
         }},
        {"server", nullptr, "URL", "the service; a build has one only", nullptr, readServer},
        {"timeout", nullptr, "SECONDS", "gives up after this time", nullptr, readTimeout},
        {"quiet", "q", nullptr, "writes results and failures only", nullptr, set<&O::quiet>},
        {"color", nullptr, "auto|always|never", "whether colours are used", "auto", readColour},
        {"verbose", nullptr, nullptr, "shows the log, with texts, numbers and tokens", nullptr,
         set<&O::verbose>},
        {"help", "h", nullptr, "prints the help, also of a command", nullptr, nothing},
        {"version", "v", nullptr, "prints the version", nullptr, nothing},
    };
    return table;
}

const QVector<const OptionRow *> &OptionTable::common()
{
    static const QVector<const OptionRow *> found = [] {
        QVector<const OptionRow *> common;
        for (const char *name :
             {"ca", "proxy", "server", "timeout", "quiet", "color", "verbose", "help", "version"})
            common.append(find(QLatin1String(name), QLatin1String()));
        return common;
    }();
    return found;
}

const OptionRow *OptionTable::find(QLatin1String name, QLatin1String command)
{
    const auto with = [name](QLatin1String only) {
        return [name, only](const OptionRow &row) {
            return QLatin1String(row.name) == name && QLatin1String(row.command) == only;
        };
    };
    const QVector<OptionRow> &all = rows();
    auto row = std::find_if(all.begin(), all.end(), with(command));
    if (row == all.end())
        row = std::find_if(all.begin(), all.end(), with(QLatin1String()));
    return row == all.end() ? nullptr : &*row;
}

QVector<QLatin1String> OptionTable::choices(const OptionRow &row)
{
    const QLatin1String value(row.value);
    if (!value.contains(QLatin1Char('|')))
        return {};
    QVector<QLatin1String> found;
    int begin = 0;
    for (int end = 0; end < value.size(); begin = end + 1) {
        end = value.indexOf(QLatin1Char('|'), begin);
        end = end < 0 ? value.size() : end;
        found.append(value.mid(begin, end - begin));
    }
    return found;
}

bool OptionTable::takesFile(const OptionRow &row)
{
    return QLatin1String(row.value) == QLatin1String("FILE");
}
