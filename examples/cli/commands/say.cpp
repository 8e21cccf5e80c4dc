#include "commands/say.h"

#include "audio/player.h"
#include "audio/soundnames.h"
#include "commandline/textinput.h"
#include "hostkit/outputfile.h"
#include "hostkit/speakjob.h"
#include "terminal/console.h"
#include "terminal/progress.h"
#include "terminal/terminal.h"

#include <QFile>
#include <QFileInfo>

namespace {

const QLatin1String standardStream("-");

// The text is given in one way: as an argument, by a file, or on standard input.
QString readSource(Options &options)
{
    const bool isArgument = !options.subjects.isEmpty();
    if (isArgument && !options.textFile.isNull())
        return QStringLiteral("say takes a text or -f FILE, not both");
    if (isArgument && options.subjects.at(0) != standardStream)
        options.speech.text = options.subjects.at(0);
    else if (isArgument || (options.textFile.isNull() && !Terminal::is(stdin)))
        options.textFile = standardStream;
    else if (options.textFile.isNull())
        return QStringLiteral("say needs a text");
    if (options.textFile.isEmpty() && options.speech.text.trimmed().isEmpty())
        return QStringLiteral("there is nothing to say in the text");
    return {};
}

QString readTarget(Options &options)
{
    const bool isPcm = options.speech.format == QLatin1String("pcm");
    if (options.output.isEmpty() && (!options.play || !options.output.isNull()))
        return QStringLiteral("say needs a file for the audio (-o FILE.wav), or --play");
    if (options.play && isPcm)
        return QStringLiteral("--play needs --format wav");
    if (options.output == standardStream && options.json)
        return QStringLiteral("-o - and --json both want standard output");
    if (options.output == standardStream && Terminal::is(stdout))
        return QStringLiteral("audio is not written to a terminal");
    if (const QString other = SoundNames::otherFormat(options.output, options.speech.format);
        !other.isEmpty())
        return QStringLiteral("the audio is %1, and \"%2\" ends in %3")
            .arg(options.speech.format, options.output, other);
    return {};
}

QString targetProblem(const Options &options)
{
    if (options.play) {
        if (QString problem = Player::problem(); !problem.isEmpty())
            return problem;
    }
    if (options.output.isEmpty() || options.output == standardStream)
        return {};
    return OutputFile(options.output).problem();
}

} // namespace

Say::Say(const Options &options, const Tools &tools)
    : Command(options, tools)
{
}

QString Say::read(Options &options)
{
    if (options.speech.isAnonymous && (options.longForm || options.token))
        return QStringLiteral("--anonymous sends no token and goes with neither --long nor "
                              "--token");
    options.speech.form = options.longForm ? Job::Form::Long : Job::Form::ByLength;
    const QString problem = readSource(options);
    return problem.isEmpty() ? readTarget(options) : problem;
}

QString Say::prepare(Options &options)
{
    if (QString problem = targetProblem(options); !problem.isEmpty())
        return problem;
    if (!options.textFile.isEmpty()) {
        if (QString problem = TextInput::read(options.textFile, options.speech.text);
            !problem.isEmpty())
            return problem;
    }
    return SpeakJob::problem(options.speech).line();
}

void Say::start()
{
    const QString output = options().output;
    const bool isKept = !output.isEmpty() && output != standardStream;
    const QString path = isKept ? output : m_folder.filePath(QStringLiteral("speech.wav"));
    auto *job = new SpeakJob(kit(), options().speech, path, this);
    connect(job, &SpeakJob::succeeded, this, &Say::onSpoken);
    connect(job, &TaskJob::named, this, [this](const QString &id) {
        setWayOn(
            QStringLiteral("the service goes on; vospeak task %1 -o FILE gets the audio").arg(id));
    });
    run(job);
}

void Say::onSpoken(const QString &path, qint64 bytes)
{
    setWayOn({});
    if (options().output == standardStream) {
        QFile audio(path);
        progress()->clear();
        if (!audio.open(QIODevice::ReadOnly) || !Console::printBytes(audio.readAll()))
            return failPrinting();
    }
    if (options().play)
        play(path, bytes);
    else
        finishWith(path, bytes);
}

void Say::play(const QString &path, qint64 bytes)
{
    progress()->clear();
    auto *player = new Player(this);
    connect(player, &Player::ended, this, [this, path, bytes](const QString &problem) {
        if (problem.isEmpty())
            finishWith(path, bytes);
        else
            Q_EMIT failed({Reason::Kind::File, problem});
    });
    player->play(path);
}

void Say::finishWith(const QString &path, qint64 bytes)
{
    const bool isKept = path == options().output;
    if (isKept)
        progress()->tell(SoundNames::summary(path, options().speech));
    QJsonObject document{{QStringLiteral("bytes"), bytes}};
    if (isKept)
        document.insert(QStringLiteral("file"), path);
    finish({}, document);
}
