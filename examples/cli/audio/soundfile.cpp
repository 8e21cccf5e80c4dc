#include "audio/soundfile.h"

#include "hostkit/limits.h"
#include "hostkit/wavfile.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <memory>
#include <numeric>
#include <vector>

#include <samplerate.h>
#include <sndfile.hh>

namespace {

constexpr int lowestRate = 8000;
constexpr int highestRate = 192000;
constexpr int rate = 16000;         // what recognisers work with
constexpr sf_count_t block = 65536; // frames that are converted at a time

bool isFine(const WavFile::Format &format)
{
    return format.coding == 1 && format.bitsPerSample == 16 && format.channels <= 2
           && format.sampleRate >= lowestRate && format.sampleRate <= highestRate;
}

SndfileHandle open(const QString &path)
{
    return SndfileHandle(QFile::encodeName(path).constData());
}

// The mean of the channels of the next frames, @p most at most; empty: there are none left.
std::vector<float> nextMixed(SndfileHandle &file, sf_count_t most)
{
    const int channels = file.channels();
    std::vector<float> frames(size_t(most) * size_t(channels));
    const sf_count_t count = file.readf(frames.data(), most);
    std::vector<float> mix;
    mix.reserve(size_t(count));
    for (auto frame = frames.begin(); frame != frames.begin() + count * channels; frame += channels)
        mix.push_back(std::accumulate(frame, frame + channels, 0.0F) / float(channels));
    return mix;
}

/// Brings samples to the rate of recognisers, block by block.
class Resampler
{
    Q_DISABLE_COPY(Resampler)

public:
    explicit Resampler(int from)
        : m_ratio(double(rate) / from)
        , m_state(src_new(SRC_SINC_MEDIUM_QUALITY, 1, nullptr), &src_delete)
    {
    }

    /// What is to be written for @p samples, which are the last when there are none. Empty at the
    /// end, and when this rate cannot be converted.
    std::vector<float> take(const std::vector<float> &samples)
    {
        if (m_ratio == 1)
            return samples;
        SRC_DATA step = {};
        step.src_ratio = m_ratio;
        step.data_in = samples.empty() ? &m_nothing : samples.data();
        step.input_frames = long(samples.size());
        step.end_of_input = samples.empty();
        std::vector<float> result;
        do {
            const size_t done = result.size();
            result.resize(done + block);
            step.data_out = result.data() + done;
            step.output_frames = long(block);
            if (!m_state || src_process(m_state.get(), &step) != 0)
                return {};
            result.resize(done + size_t(step.output_frames_gen));
            step.data_in += step.input_frames_used;
            step.input_frames -= step.input_frames_used;
        } while (step.input_frames_used > 0 || step.output_frames_gen > 0);
        return result;
    }

private:
    const double m_ratio;
    const float m_nothing = 0; ///< Stands behind the last sample: a null would not be an end.
    const std::unique_ptr<SRC_STATE, decltype(&src_delete)> m_state;
};

/// Writes what the sound becomes. Reads an hour and a second at most: longer recordings are
/// refused. Negative: it cannot be written; else the number of samples.
sf_count_t convertSound(SndfileHandle &file, SndfileHandle &wav)
{
    Resampler resampler(file.samplerate());
    sf_count_t left = sf_count_t(Limits::longRecording + 1) * file.samplerate();
    sf_count_t written = 0;
    for (bool isOver = false; !isOver;) {
        const std::vector<float> mix = nextMixed(file, std::min(block, left));
        left -= sf_count_t(mix.size());
        isOver = mix.empty();
        const std::vector<float> samples = resampler.take(mix);
        const auto count = sf_count_t(samples.size());
        if (wav.write(samples.data(), count) != count)
            return -1;
        written += count;
    }
    return written;
}

} // namespace

bool SoundFile::needsConversion(const QString &path)
{
    const auto format = WavFile::format(path);
    if (format && isFine(*format))
        return false;
    const SndfileHandle file = open(path);
    return file && file.channels() > 0 && file.samplerate() > 0;
}

QString SoundFile::convert(const QString &from, const QString &to)
{
    SndfileHandle file = open(from);
    if (!file)
        return QStringLiteral("cannot read the recording \"%1\"").arg(from);
    SndfileHandle wav(QFile::encodeName(to).constData(), SFM_WRITE,
                      SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, rate);
    wav.command(SFC_SET_CLIPPING, nullptr, SF_TRUE); // a resampled peak may be above the highest
    const sf_count_t written = wav ? convertSound(file, wav) : -1;
    if (written < 0)
        return QStringLiteral("the converted recording could not be written");
    return written > 0 ? QString() : QStringLiteral("there is no sound in \"%1\"").arg(from);
}
