#include "audio/soundnames.h"

#include "hostkit/speakjob.h"
#include "hostkit/wavfile.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>

namespace {

QStringList namesOf(const QString &format)
{
    if (format == QLatin1String("pcm"))
        return {QStringLiteral("pcm"), QStringLiteral("raw")};
    return {QStringLiteral("wav"), QStringLiteral("wave")};
}

// Names of files that a user would expect audio of another format in.
QStringList known()
{
    static const QStringList names =
        QStringLiteral("aac ac3 aif aiff amr au caf flac m4a mka mp3 mp4 oga ogg opus pcm raw spx "
                       "wav wave webm wma wv")
            .split(QLatin1Char(' '));
    return names;
}

double seconds(const QString &path, const Speech &speech)
{
    constexpr double bytesOfSample = 2;
    if (speech.format == QLatin1String("pcm"))
        return double(QFileInfo(path).size()) / bytesOfSample / speech.sampleRate;
    return WavFile::duration(path);
}

} // namespace

QString SoundNames::otherFormat(const QString &path, const QString &format)
{
    const QString ending = QFileInfo(path).suffix();
    const bool isOther = known().contains(ending, Qt::CaseInsensitive)
                         && !namesOf(format).contains(ending, Qt::CaseInsensitive);
    return isOther ? QLatin1Char('.') + ending : QString();
}

QString SoundNames::summary(const QString &path, const Speech &speech)
{
    const auto format = WavFile::format(path);
    const int rate = format ? format->sampleRate : speech.sampleRate;
    const double duration = seconds(path, speech);
    QString text = path;
    if (duration >= 0)
        text += QStringLiteral(", %1 s").arg(QLocale::c().toString(duration, 'f', 1));
    return text + QStringLiteral(", %1 kHz").arg(rate / 1000.0);
}
