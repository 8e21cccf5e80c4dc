#include "commandline.h"

#include <QCoreApplication>

namespace {

const QLatin1String voiceName("voice");
const QLatin1String rateName("rate");
const QLatin1String longName("long");
const QLatin1String anonymousName("anonymous");
const QLatin1String outputName("output");
const QLatin1String authorityName("ca");
const QLatin1String tokenName("token");
const QLatin1String verboseName("verbose");
const QLatin1String helpName("help");
const QLatin1String versionName("version");

const QLatin1String description(
    "Speaks and recognises by way of the speech service.\n\n"
    "  vospeak say \"TEXT\" -o FILE.wav [--voice VOICE] [--rate HZ] [--long | --anonymous]\n"
    "  vospeak recognize FILE.wav|ADDRESS [--long]\n\n"
    "The text of a recording goes to standard output, everything else to standard error.\n"
    "An ADDRESS begins with https:// and must be one that the service can read.\n"
    "Exit status: 0 done, 1 refused or failed, 2 wrong use, 130 or 143 interrupted.");

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
    m_parser.addOptions({
        {{QStringLiteral("h"), helpName}, QStringLiteral("Prints this help.")},
        {{QStringLiteral("v"), versionName}, QStringLiteral("Prints the version.")},
        {{QStringLiteral("o"), outputName},
         QStringLiteral("say: the file that gets the audio."),
         QStringLiteral("file")},
        {voiceName, QStringLiteral("say: the voice; rms by default."), QStringLiteral("voice"),
         QStringLiteral("rms")},
        {rateName, QStringLiteral("say: samples per second; 16000 by default."),
         QStringLiteral("hz"), QStringLiteral("16000")},
        {anonymousName, QStringLiteral("say: without signing in.")},
        {longName, QStringLiteral("For long texts and recordings: waits for a task.")},
        {tokenName, QStringLiteral("The number that signing in gave."), QStringLiteral("number")},
        {authorityName, QStringLiteral("Trusts the certificates in this PEM file as well."),
         QStringLiteral("file")},
        {verboseName, QStringLiteral("Shows what the library logs.")},
    });
    m_parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("say or recognize."));
    m_parser.addPositionalArgument(QStringLiteral("subject"),
                                   QStringLiteral("The text, or the recording."));
}

void CommandLine::read(const QStringList &arguments)
{
    if (!m_parser.parse(arguments)) {
        complain(m_parser.errorText());
        return;
    }
    if (m_parser.isSet(helpName)) {
        m_information = m_parser.helpText();
    } else if (m_parser.isSet(versionName)) {
        m_information = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                      QCoreApplication::applicationVersion());
    } else {
        m_options.longForm = m_parser.isSet(longName);
        m_options.anonymous = m_parser.isSet(anonymousName);
        m_options.verbose = m_parser.isSet(verboseName);
        m_options.authority = m_parser.value(authorityName);
        readAction();
        readToken();
    }
}

void CommandLine::readAction()
{
    const QStringList words = m_parser.positionalArguments();
    const QString action = words.value(0);
    if (words.isEmpty())
        complain(QStringLiteral("no command; there are say and recognize"));
    else if (action != QLatin1String("say") && action != QLatin1String("recognize"))
        complain(QStringLiteral("unknown command \"%1\"; there are say and recognize").arg(action));
    else if (words.size() < 2)
        complain(QStringLiteral("%1 needs a text or a recording").arg(action));
    else if (words.size() > 2)
        complain(
            QStringLiteral("%1 takes one argument; put a text in quotation marks").arg(action));
    else if (action == QLatin1String("say"))
        readSpeech();
    else
        readRecording();
}

void CommandLine::readSpeech()
{
    m_options.action = Options::Action::Say;
    m_options.text = m_parser.positionalArguments().at(1);
    m_options.voice = m_parser.value(voiceName);
    m_options.output = m_parser.value(outputName);
    readSampleRate();
    if (m_options.text.trimmed().isEmpty())
        complain(QStringLiteral("there is nothing to say in the text"));
    if (m_options.output.isEmpty())
        complain(QStringLiteral("say needs a file for the audio (-o FILE.wav)"));
    if (m_options.longForm && m_options.anonymous)
        complain(QStringLiteral("--long needs a token and does not go with --anonymous"));
}

void CommandLine::readRecording()
{
    m_options.action = Options::Action::Recognize;
    m_options.recording = m_parser.positionalArguments().at(1);
    refuse({outputName, voiceName, rateName, anonymousName});
    if (m_options.recording.isEmpty())
        complain(QStringLiteral("recognize needs a recording"));
}

void CommandLine::readToken()
{
    const QString token = m_parser.value(tokenName);
    bool isNumber = false;
    m_options.token = token.toLongLong(&isNumber);
    if (m_parser.isSet(tokenName) && !isNumber)
        complain(QStringLiteral("the token \"%1\" is no 64-bit number").arg(token));
    else if (!m_parser.isSet(tokenName) && !m_options.anonymous)
        complain(QStringLiteral("--token is missing"));
}

void CommandLine::readSampleRate()
{
    const QString rate = m_parser.value(rateName);
    bool isNumber = false;
    m_options.sampleRate = rate.toInt(&isNumber);
    if (!isNumber || m_options.sampleRate <= 0)
        complain(QStringLiteral("the rate \"%1\" is no positive number").arg(rate));
}

void CommandLine::refuse(const QStringList &names)
{
    for (const QString &name : names) {
        if (m_parser.isSet(name))
            complain(QStringLiteral("--%1 does not go with recognize").arg(name));
    }
}

// The first problem is the one that is told.
void CommandLine::complain(const QString &problem)
{
    if (m_problem.isEmpty())
        m_problem = QStringLiteral("%1 (see vospeak --help)").arg(problem);
}
