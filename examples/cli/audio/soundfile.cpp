#include "audio/soundfile.h"

#include "hostkit/limits.h"
#include "hostkit/wavfile.h"

#include <QFile>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <samplerate.h>
#include <sndfile.hh>

namespace {

constexpr int lowestRate = 8000;
constexpr int highestRate = 192000;
constexpr int rate = 16000; // what recognisers work with
constexpr sf_count_t block = 65536;

bool isFine(const WavFile::Format &format)
{
    return format.coding == 1 && format.bitsPerSample == 16 && format.channels <= 2
           && format.sampleRate >= lowestRate && format.sampleRate <= highestRate;
}

SndfileHandle open(const QString &path)
{
    return SndfileHandle(QFile::encodeName(path).constData());
}

// The mean of the channels. Reads an hour and a second at most: longer recordings are refused.
std::vector<float> mixed(SndfileHandle &file)
{
    const int channels = file.channels();
    const size_t most = size_t(Limits::longRecording + 1) * size_t(file.samplerate());
    std::vector<float> mix;
    std::vector<float> frames(size_t(block) * size_t(channels));
    for (sf_count_t count = block; count > 0 && mix.size() < most;) {
        count = file.readf(frames.data(), block);
        for (auto frame = frames.begin(); frame != frames.begin() + count * channels;
             frame += channels) {
            float sum = 0;
            std::for_each(frame, frame + channels, [&sum](float sample) { sum += sample; });
            mix.push_back(sum / float(channels));
        }
    }
    return mix;
}

std::vector<float> resampled(std::vector<float> samples, int from)
{
    if (from == rate || samples.empty())
        return samples;
    SRC_DATA conversion = {};
    conversion.src_ratio = double(rate) / from;
    std::vector<float> result(size_t(double(samples.size()) * conversion.src_ratio) + 1);
    conversion.data_in = samples.data();
    conversion.input_frames = long(samples.size());
    conversion.data_out = result.data();
    conversion.output_frames = long(result.size());
    if (src_simple(&conversion, SRC_SINC_MEDIUM_QUALITY, 1) != 0)
        return {};
    result.resize(size_t(conversion.output_frames_gen));
    return result;
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
    const std::vector<float> samples = resampled(mixed(file), file.samplerate());
    if (samples.empty())
        return QStringLiteral("there is no sound in \"%1\"").arg(from);
    SndfileHandle wav(QFile::encodeName(to).constData(), SFM_WRITE,
                      SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, rate);
    wav.command(SFC_SET_CLIPPING, nullptr, SF_TRUE); // a resampled peak may be above the highest
    const auto count = sf_count_t(samples.size());
    if (!wav || wav.write(samples.data(), count) != count)
        return QStringLiteral("the converted recording could not be written");
    return {};
}
