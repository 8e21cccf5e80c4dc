#include "audio/mixer.h"

#include "hostkit/wavfile.h"
#include "hostkit/wholefile.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <limits>

namespace {

constexpr qint64 sampleSize = 2; // bytes

struct Sound
{
    WavFile::Format format;
    QByteArray file; ///< The whole of it.

    bool isUsable() const { return format.coding == 1 && format.bitsPerSample == 16; }
    qint64 frames() const { return format.dataSize / (sampleSize * format.channels); }

    char *at(qint64 frame, int channel)
    {
        return file.data() + format.dataStart + (frame * format.channels + channel) * sampleSize;
    }

    /// The first channel at @p place, in frames, between which there is a straight line.
    double heardAt(double place)
    {
        const auto frame = qint64(place);
        const double share = place - double(frame);
        const auto here = qFromLittleEndian<qint16>(at(frame, 0));
        const auto next = qFromLittleEndian<qint16>(at((frame + 1) % frames(), 0));
        return here * (1 - share) + next * share;
    }
};

Sound soundIn(const QString &path)
{
    QFile file(path);
    const auto format = WavFile::format(path);
    if (!format || !file.open(QIODevice::ReadOnly))
        return {};
    return {*format, file.readAll()};
}

qint16 clipped(double sample)
{
    using Limits = std::numeric_limits<qint16>;
    return qint16(qBound<double>(Limits::min(), sample, Limits::max()));
}

} // namespace

QString Mixer::mix(const QString &voice, const QString &music, int level, const QString &output)
{
    Sound mixed = soundIn(voice);
    Sound under = soundIn(music);
    if (!mixed.isUsable() || !under.isUsable() || under.frames() == 0)
        return QCoreApplication::translate("Mixer", "the music cannot be mixed with the voice");
    const double step = double(under.format.sampleRate) / mixed.format.sampleRate;
    const qint64 frames = mixed.frames();
    double place = 0;
    for (qint64 frame = 0; frame < frames; ++frame) {
        const double addition = under.heardAt(place) * level / 100;
        for (int channel = 0; channel < mixed.format.channels; ++channel) {
            char *sample = mixed.at(frame, channel);
            qToLittleEndian(clipped(qFromLittleEndian<qint16>(sample) + addition), sample);
        }
        place += step;
        while (place >= double(under.frames()))
            place -= double(under.frames());
    }
    return WholeFile::write(output, mixed.file);
}
