#include "commandline.h"

#include "console.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QUrl>
#include <QVector>

#include <algorithm>
#include <iterator>

namespace {

using Action = Options::Action;

const QLatin1String voiceName("voice");
const QLatin1String rateName("rate");
const QLatin1String longName("long");
const QLatin1String anonymousName("anonymous");
const QLatin1String outputName("output");
const QLatin1String resumeName("resume");
const QLatin1String qrName("qr");
const QLatin1String smsName("sms");
const QLatin1String jsonName("json");
const QLatin1String authorityName("ca");
const QLatin1String proxyName("proxy");
const QLatin1String tokenName("token");
const QLatin1String verboseName("verbose");
const QLatin1String helpName("help");
const QLatin1String versionName("version");

const struct CommandWord
{
    QLatin1String name;
    Action action = Action::Say;
    const char *subject = nullptr; // what follows the command; null: nothing does
} commandWords[] = {
    {QLatin1String("say"), Action::Say, "a text"},
    {QLatin1String("recognize"), Action::Recognize, "a recording"},
    {QLatin1String("voices"), Action::Voices, nullptr},
    {QLatin1String("music"), Action::Music, nullptr},
    {QLatin1String("update"), Action::Update, nullptr},
    {QLatin1String("login"), Action::Login, nullptr},
    {QLatin1String("logout"), Action::Logout, nullptr},
    {QLatin1String("fetch"), Action::Fetch, "an address"},
};

const Options::Actions speech = Action::Say | Action::Recognize;
const Options::Actions catalogue = Action::Voices | Action::Music | Action::Update;
const Options::Actions withResult = speech | catalogue | Action::Login | Action::Fetch;
const Options::Actions withFile = Options::Actions(Action::Say) | Action::Fetch;
const Options::Actions every = withResult | Action::Logout;

const struct OptionWord
{
    QLatin1String name;
    const char *letter = nullptr; // null: the name is the only way to write it
    const char *value = nullptr;  // null: it takes none
    Options::Actions goesWith;
    const char *meaning = nullptr;
    const char *standard = nullptr; // the value when none is given; null: there is none
} optionWords[] = {
    {helpName, "h", nullptr, every, "Prints this help."},
    {versionName, "v", nullptr, every, "Prints the version."},
    {outputName, "o", "file", withFile, "say, fetch: the file that gets what comes."},
    {resumeName, nullptr, nullptr, Action::Fetch, "fetch: goes on where an earlier run ended."},
    {voiceName, nullptr, "voice", Action::Say, "say: the voice; %1 by default.", "rms"},
    {rateName, nullptr, "hz", Action::Say, "say: samples per second; %1 by default.", "16000"},
    {anonymousName, nullptr, nullptr, Action::Say, "say: without signing in."},
    {longName, nullptr, nullptr, speech, "For long texts and recordings: waits for a task."},
    {tokenName, nullptr, "number", speech,
     "Used in place of the session's token. Every user of this machine can read it in the list of "
     "processes."},
    {qrName, nullptr, nullptr, Action::Login, "login: shows a code to scan with a phone."},
    {smsName, nullptr, "number", Action::Login, "login: sends a code to this phone."},
    {jsonName, nullptr, nullptr, withResult, "Prints the result as one JSON document."},
    {authorityName, nullptr, "file", every, "Trusts the certificates in this PEM file as well."},
    {proxyName, nullptr, "url", every,
     "Asks through this proxy (http, socks5 or socks5h), whatever the environment says; \"\": "
     "through none. A password in it can be read like --token."},
    {verboseName, nullptr, nullptr, every,
     "Shows what the library logs, texts, phone numbers and tokens included."},
};

const QLatin1String description(
    "Speaks and recognises by way of the speech service.\n\n"
    "  vospeak login --qr | --sms NUMBER\n"
    "  vospeak logout\n"
    "  vospeak say \"TEXT\" -o FILE.wav [--voice VOICE] [--rate HZ] [--long | --anonymous]\n"
    "  vospeak recognize FILE.wav|ADDRESS [--long]\n"
    "  vospeak voices | music | update\n"
    "  vospeak fetch ADDRESS [-o FILE] [--resume]\n\n"
    "Results go to standard output, everything else to standard error. The ADDRESS\n"
    "of a recording begins with https:// and must be one that the service can read.\n\n"
    "login keeps a session, in session.json of the user's configuration folder and readable\n"
    "by the user only; say and recognize use it and renew its token. logout removes it; its\n"
    "tokens stay valid at the service until they run out. With --sms the code that the phone\n"
    "received is read from standard input. With --qr the code is drawn on standard error, black\n"
    "on white on a terminal; elsewhere it has no colours and can be scanned where the background\n"
    "is light. The path of its picture is shown too.\n\n"
    "fetch writes into FILE.part, which becomes FILE when it is complete and stays when it is\n"
    "not. Without -o the file has the last name in the ADDRESS, which begins with https:// or\n"
    "http://. --resume goes on with FILE.part and takes it that the server still has the same\n"
    "file; where the server cannot go on, it begins anew.\n\n"
    "A proxy is written http://[USER:PASSWORD@]HOST:PORT. Without --proxy the environment's\n"
    "https_proxy, http_proxy, all_proxy and no_proxy choose one, which needs a port there too.\n"
    "Addresses of this machine are always asked directly.\n\n"
    "With --json standard output gets one object, in UTF-8 and ended by a line feed:\n"
    "  say        file, bytes\n"
    "  fetch      file, bytes\n"
    "  recognize  text\n"
    "  voices     voices: [name, voice, type, category, scene, avatar, sampleUrl,\n"
    "             shortSynthesis, longSynthesis]\n"
    "  music      music: [name, url]\n"
    "  update     status (0 newest, 1 newer there, 2 newer needed), currentVersion, version,\n"
    "             changes: [line], url\n"
    "  login      userId, nickname, pictureUrl, tokenExpires, sessionExpires\n\n"
    "Exit status: 0 done, 1 refused or failed, 2 wrong use, 130 or 143 interrupted.");

QCommandLineOption parserOption(const OptionWord &word)
{
    QStringList names{word.name};
    if (word.letter)
        names.prepend(QLatin1String(word.letter));
    const QLatin1String standard(word.standard);
    QString meaning = QLatin1String(word.meaning);
    if (word.standard)
        meaning = meaning.arg(standard);
    return {names, meaning, QLatin1String(word.value), standard};
}

// The name is plain, without folders: an address does not choose where its file goes.
QString nameIn(const QUrl &address)
{
    const QString name = address.fileName(QUrl::FullyDecoded);
    const QVector<uint> characters = name.toUcs4();
    const bool isPlain = QFileInfo(name).fileName() == name && name != QLatin1String(".")
                         && name != QLatin1String("..")
                         && std::all_of(characters.begin(), characters.end(), Console::isPlain);
    return isPlain ? name : QString();
}

QString commandNames()
{
    QStringList names;
    for (const CommandWord &word : commandWords)
        names.append(word.name);
    const QString last = names.takeLast();
    return QStringLiteral("%1 and %2").arg(names.join(QLatin1String(", ")), last);
}

} // namespace

CommandLine::CommandLine(const QStringList &arguments)
{
    declare();
    read(arguments);
}

QString CommandLine::problem() const { return m_problem; }

QString CommandLine::information() const { return m_information; }

const Options &CommandLine::options() const { return m_options; }

void CommandLine::declare()
{
    m_parser.setApplicationDescription(description);
    for (const OptionWord &word : optionWords)
        m_parser.addOption(parserOption(word));
    m_parser.addPositionalArgument(QStringLiteral("command"),
                                   QStringLiteral("One of %1.").arg(commandNames()));
    m_parser.addPositionalArgument(QStringLiteral("subject"),
                                   QStringLiteral("The text, the recording or the address."),
                                   QStringLiteral("[subject]"));
}

void CommandLine::read(const QStringList &arguments)
{
    if (!m_parser.parse(arguments)) {
        complain(m_parser.errorText());
    } else if (m_parser.isSet(helpName)) {
        m_information = m_parser.helpText();
    } else if (m_parser.isSet(versionName)) {
        m_information = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                      QCoreApplication::applicationVersion());
    } else if (readCommand()) {
        m_options.longForm = m_parser.isSet(longName);
        m_options.anonymous = m_parser.isSet(anonymousName);
        m_options.json = m_parser.isSet(jsonName);
        m_options.verbose = m_parser.isSet(verboseName);
        m_options.authority = m_parser.value(authorityName);
        if (m_parser.isSet(proxyName))
            m_options.proxy = m_parser.value(proxyName);
        refuseStrayOptions();
        readToken();
        if (m_options.action == Action::Say)
            readSpeech();
        else if (m_options.action == Action::Fetch)
            readDownload();
        else if (m_options.action == Action::Login)
            readLogin();
    }
}

// False when no command is named that the other arguments could be read for.
bool CommandLine::readCommand()
{
    const QStringList words = m_parser.positionalArguments();
    const auto *command =
        std::find_if(std::begin(commandWords), std::end(commandWords),
                     [&](const CommandWord &word) { return word.name == words.value(0); });
    if (words.isEmpty())
        complain(QStringLiteral("no command; there are %1").arg(commandNames()));
    else if (command == std::end(commandWords))
        complain(QStringLiteral("unknown command \"%1\"; there are %2")
                     .arg(words.at(0), commandNames()));
    else if (!command->subject && words.size() > 1)
        complain(QStringLiteral("%1 takes no argument").arg(words.at(0)));
    else if (command->subject && words.size() < 2)
        complain(QStringLiteral("%1 needs %2").arg(words.at(0), QLatin1String(command->subject)));
    else if (command->subject && words.size() > 2)
        complain(QStringLiteral("%1 takes one argument; put a text in quotation marks")
                     .arg(words.at(0)));
    if (!m_problem.isEmpty())
        return false;
    m_options.action = command->action;
    readSubject(words.value(1));
    return true;
}

void CommandLine::readSubject(const QString &subject)
{
    if (m_options.action == Action::Say) {
        m_options.text = subject;
        if (subject.trimmed().isEmpty())
            complain(QStringLiteral("there is nothing to say in the text"));
    } else if (m_options.action == Action::Recognize) {
        m_options.recording = subject;
        if (subject.isEmpty())
            complain(QStringLiteral("recognize needs a recording"));
    } else if (m_options.action == Action::Fetch) {
        m_options.address = subject;
        const QUrl address(subject, QUrl::TolerantMode);
        if ((address.scheme() != QLatin1String("https")
             && address.scheme() != QLatin1String("http"))
            || address.host().isEmpty())
            complain(QStringLiteral("fetch needs an address that begins with https:// or http://"));
    }
}

void CommandLine::refuseStrayOptions()
{
    for (const OptionWord &word : optionWords) {
        if (m_parser.isSet(word.name) && !word.goesWith.testFlag(m_options.action))
            complain(QStringLiteral("--%1 does not go with %2")
                         .arg(word.name, m_parser.positionalArguments().at(0)));
    }
}

void CommandLine::readSpeech()
{
    m_options.voice = m_parser.value(voiceName);
    m_options.output = m_parser.value(outputName);
    readSampleRate();
    if (m_options.output.isEmpty())
        complain(QStringLiteral("say needs a file for the audio (-o FILE.wav)"));
    if (m_options.anonymous && (m_options.longForm || m_options.token))
        complain(
            QStringLiteral("--anonymous sends no token and goes with neither --long nor --token"));
}

void CommandLine::readDownload()
{
    m_options.resume = m_parser.isSet(resumeName);
    m_options.output = m_parser.isSet(outputName)
                           ? m_parser.value(outputName)
                           : nameIn(QUrl(m_options.address, QUrl::TolerantMode));
    if (m_options.output.isEmpty())
        complain(QStringLiteral("the address has no name for the file; name one (-o FILE)"));
}

void CommandLine::readLogin()
{
    m_options.phone = m_parser.value(smsName).trimmed();
    if (m_parser.isSet(qrName) == m_parser.isSet(smsName))
        complain(QStringLiteral("login needs either --qr or --sms NUMBER"));
    if (m_parser.isSet(smsName) && m_options.phone.isEmpty())
        complain(QStringLiteral("--sms needs the number of a phone"));
}

void CommandLine::readToken()
{
    if (!m_parser.isSet(tokenName))
        return;
    bool isNumber = false;
    m_options.token = m_parser.value(tokenName).toLongLong(&isNumber);
    if (!isNumber)
        complain(
            QStringLiteral("the token \"%1\" is no 64-bit number").arg(m_parser.value(tokenName)));
}

void CommandLine::readSampleRate()
{
    bool isNumber = false;
    m_options.sampleRate = m_parser.value(rateName).toInt(&isNumber);
    if (!isNumber || m_options.sampleRate <= 0)
        complain(
            QStringLiteral("the rate \"%1\" is no positive number").arg(m_parser.value(rateName)));
}

// Keeps the first problem; those that follow may come of it.
void CommandLine::complain(const QString &problem)
{
    if (m_problem.isEmpty())
        m_problem = QStringLiteral("%1 (see vospeak --help)").arg(problem);
}
