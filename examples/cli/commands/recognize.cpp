#include "commands/recognize.h"

#include "audio/recorder.h"
#include "audio/soundfile.h"
#include "hostkit/inputfile.h"
#include "hostkit/limits.h"
#include "hostkit/recognizejob.h"
#include "hostkit/wavfile.h"
#include "terminal/console.h"
#include "terminal/failures.h"
#include "terminal/progress.h"
#include "terminal/terminal.h"

#include <QFile>
#include <QMetaObject>

#include <cstdio>

namespace {

const QLatin1String standardStream("-");

bool isFile(const QString &recording)
{
    return recording != standardStream && !InputFile::isAddress(recording);
}

// A recording whose duration does not show is taken for a short one; the service refuses it if it
// is not.
Job::Form formOf(const QString &recording, const Options &options)
{
    const bool isLong = isFile(recording) && WavFile::duration(recording) > Limits::shortRecording;
    return options.longForm || isLong ? Job::Form::Long : Job::Form::Short;
}

Reason problemOf(const QString &recording, const Options &options)
{
    if (!isFile(recording))
        return {};
    if (const QString problem = InputFile::problem(recording); !problem.isEmpty())
        return {Reason::Kind::Unusable, problem};
    if (SoundFile::needsConversion(recording)) // which makes it another one
        return {};
    return RecognizeJob::problem(recording, formOf(recording, options));
}

// Reads one byte more than may be uploaded at most.
QString readInput(QByteArray &bytes)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly))
        return QStringLiteral("standard input cannot be read");
    const qint64 most = Limits::recordingSize + 1;
    for (QByteArray more = input.read(most); !more.isEmpty();
         more = input.read(most - bytes.size()))
        bytes += more;
    return bytes.isEmpty() ? QStringLiteral("no recording came on standard input") : QString();
}

} // namespace

QString Recognize::read(Options &options)
{
    const QStringList &recordings = options.subjects;
    if (options.record > 0 && !recordings.isEmpty())
        return QStringLiteral("recognize takes recordings or --record, not both");
    if (options.record == 0 && (recordings.isEmpty() || recordings.contains(QString())))
        return QStringLiteral("recognize needs a recording");
    if (recordings.count(standardStream) > 1)
        return QStringLiteral("standard input can be read once only");
    if (recordings.contains(standardStream) && Terminal::is(stdin))
        return QStringLiteral("a recording is not read from a terminal");
    return {};
}

QString Recognize::prepare(Options &options)
{
    if (options.record > 0)
        return Recorder::problem();
    if (options.subjects.size() == 1) {
        if (const Reason reason = problemOf(options.subjects.at(0), options); !reason.isNone())
            return reason.line();
    }
    return options.subjects.contains(standardStream) ? readInput(options.input) : QString();
}

void Recognize::start()
{
    if (options().record > 0)
        record();
    else
        recognizeNext();
}

void Recognize::record()
{
    const QString path = m_folder.filePath(QStringLiteral("recorded.wav"));
    auto *recorder = new Recorder(this);
    connect(recorder, &Recorder::ended, this, [this, path](const QString &problem) {
        if (problem.isEmpty())
            recognize(path);
        else
            failFor(problem);
    });
    progress()->show(QStringLiteral("recording for %1 s").arg(options().record));
    recorder->record(options().record, path);
}

void Recognize::recognizeNext()
{
    const QString recording = options().subjects.at(m_place);
    if (const Reason reason = problemOf(recording, options()); !reason.isNone())
        return fail(reason);
    if (InputFile::isAddress(recording))
        return recognize(recording);
    const QString file = recording == standardStream ? fromStandardInput() : recording;
    if (file.isEmpty())
        return failFor(QStringLiteral("what came on standard input could not be kept"));
    if (!SoundFile::needsConversion(file))
        return recognize(file);
    const QString converted = m_folder.filePath(QStringLiteral("converted.wav"));
    if (const QString problem = SoundFile::convert(file, converted); !problem.isEmpty())
        failFor(problem);
    else
        recognize(converted);
}

void Recognize::recognize(const QString &recording)
{
    auto *job = new RecognizeJob(kit(), recording, formOf(recording, options()), this);
    connect(job, &RecognizeJob::succeeded, this, &Recognize::onText);
    connect(job, &TaskJob::named, this, [this](const QString &id) {
        setWayOn(QStringLiteral("the service goes on; vospeak task %1 gets the text").arg(id));
    });
    run(job, QStringLiteral("recognising"));
}

void Recognize::onText(const QString &text)
{
    setWayOn({});
    QString line = Console::onOneLine(text) + QLatin1Char('\n');
    QJsonObject document{{QStringLiteral("text"), text}};
    const QStringList &recordings = options().subjects;
    if (recordings.size() > 1) {
        const QString &recording = recordings.at(m_place);
        line.prepend(Console::onOneLine(recording) + QStringLiteral(": "));
        document.insert(QStringLiteral("file"), recording);
    }
    if (isLast())
        finish(line, document, m_status);
    else if (print(line, document))
        goOn();
}

void Recognize::fail(const Reason &reason)
{
    const QStringList &recordings = options().subjects;
    if (recordings.size() <= 1)
        return Command::fail(reason);
    setWayOn({});
    progress()->clear();
    Failures::tell(reason, options().json, recordings.at(m_place));
    if (m_status == Success)
        m_status = exitStatus(reason.kind);
    if (isLast())
        Q_EMIT ended(m_status);
    else
        goOn();
}

// In the event loop, which may have a Ctrl-C to tell.
void Recognize::goOn()
{
    ++m_place;
    QMetaObject::invokeMethod(this, &Recognize::recognizeNext, Qt::QueuedConnection);
}

bool Recognize::isLast() const { return m_place + 1 >= options().subjects.size(); }

// The file with what came; empty: it could not be written.
QString Recognize::fromStandardInput()
{
    QFile copy(m_folder.filePath(QStringLiteral("input")));
    const QByteArray &input = options().input;
    return copy.open(QIODevice::WriteOnly) && copy.write(input) == input.size() && copy.flush()
               ? copy.fileName()
               : QString();
}

void Recognize::failFor(const QString &problem) { fail({Reason::Kind::File, problem}); }
