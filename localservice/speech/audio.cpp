#include "localservice/speech/audio.h"

#include "localservice/base/refusal.h"

#include <QtEndian>

#include <samplerate.h>
#include <sndfile.hh>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

namespace localservice {

namespace {

constexpr int lowestRate = 8000;
constexpr int highestRate = 192000;
constexpr std::size_t bytesPerSample = 2;
constexpr float fullScale = 32768.0F;

[[noreturn]] void refuse(const std::string &message)
{
    throw Refusal(Code::UnusableAudio, "the recording " + message);
}

// The sound library reads as much as there is of a truncated file, which names the size of the
// whole.
void checkComplete(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    const auto size = static_cast<std::uint64_t>(std::filesystem::file_size(path));
    std::array<char, 12> head{};
    if (!file.read(head.data(), head.size()) || std::string(head.data(), 4) != "RIFF"
        || std::string(head.data() + 8, 4) != "WAVE")
        refuse("is not a RIFF/WAVE file");
    std::uint64_t position = head.size();
    std::array<char, 8> chunk{};
    while (file.seekg(static_cast<std::streamoff>(position))
           && file.read(chunk.data(), chunk.size())) {
        const std::uint64_t length = qFromLittleEndian<quint32>(chunk.data() + 4);
        position += chunk.size() + length;
        if (position > size)
            refuse("is truncated");
        if (std::string(chunk.data(), 4) == "data")
            return;
        position += length % 2; // chunks begin at even positions
    }
    refuse("has no samples");
}

SndfileHandle openWave(const std::filesystem::path &path, int longest)
{
    checkComplete(path);
    SndfileHandle file(path.string());
    if (!file)
        refuse("cannot be read");
    const int type = file.format() & SF_FORMAT_TYPEMASK;
    if ((type != SF_FORMAT_WAV && type != SF_FORMAT_WAVEX)
        || (file.format() & SF_FORMAT_SUBMASK) != SF_FORMAT_PCM_16)
        refuse("does not have 16-bit PCM samples");
    if (file.channels() < 1 || file.channels() > 2)
        refuse("has more than two channels");
    if (file.samplerate() < lowestRate || file.samplerate() > highestRate)
        refuse("has a sampling rate below 8000 Hz or above 192000 Hz");
    if (file.frames() < 1)
        refuse("has no samples");
    if (file.frames() > std::int64_t{longest} * file.samplerate())
        throw Refusal(Code::TooLarge,
                      "the recording is longer than " + std::to_string(longest) + " seconds");
    return file;
}

std::int16_t clipped(float sample)
{
    const float scaled = std::round(sample * fullScale);
    return static_cast<std::int16_t>(std::clamp(scaled, -fullScale, fullScale - 1));
}

// Appends the lowest bytes of a number, the lowest first.
void append(std::string &bytes, std::uint32_t value, int count)
{
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8U * static_cast<unsigned>(i)) & 0xffU);
}

} // namespace

void checkWave(const std::filesystem::path &path, int longest) { openWave(path, longest); }

Audio readWave(const std::filesystem::path &path, Channels channels, int longest)
{
    SndfileHandle file = openWave(path, longest);
    const auto frames = static_cast<std::size_t>(file.frames());
    const auto width = static_cast<std::size_t>(file.channels());
    std::vector<float> interleaved(frames * width);
    if (file.readf(interleaved.data(), file.frames()) != file.frames())
        refuse("is truncated");
    if (width == 1)
        return {file.samplerate(), std::move(interleaved)};
    Audio audio{file.samplerate(), std::vector<float>(frames)};
    for (std::size_t i = 0; i < frames; ++i) {
        const float first = interleaved[2 * i];
        audio.samples[i] =
            channels == Channels::FirstOnly ? first : (first + interleaved[2 * i + 1]) / 2;
    }
    return audio;
}

Audio resampled(Audio audio, int sampleRate)
{
    if (audio.sampleRate == sampleRate || audio.samples.empty())
        return {sampleRate, std::move(audio.samples)};
    const double ratio = static_cast<double>(sampleRate) / audio.sampleRate;
    const auto frames =
        static_cast<std::size_t>(std::ceil(static_cast<double>(audio.samples.size()) * ratio)) + 1;
    Audio result{sampleRate, std::vector<float>(frames)};
    SRC_DATA conversion{};
    conversion.data_in = audio.samples.data();
    conversion.input_frames = static_cast<long>(audio.samples.size());
    conversion.data_out = result.samples.data();
    conversion.output_frames = static_cast<long>(frames);
    conversion.src_ratio = ratio;
    const int error = src_simple(&conversion, SRC_SINC_MEDIUM_QUALITY, 1);
    if (error != 0)
        throw Refusal(Code::Failed,
                      std::string("the sampling rate cannot be converted: ") + src_strerror(error));
    result.samples.resize(static_cast<std::size_t>(conversion.output_frames_gen));
    return result;
}

std::vector<std::int16_t> toPcm(const Audio &audio)
{
    std::vector<std::int16_t> samples(audio.samples.size());
    std::transform(audio.samples.begin(), audio.samples.end(), samples.begin(), clipped);
    return samples;
}

std::string encodePcm(const Audio &audio)
{
    const std::vector<std::int16_t> samples = toPcm(audio);
    std::string bytes(samples.size() * bytesPerSample, '\0');
    qToLittleEndian<std::int16_t>(samples.data(), static_cast<qsizetype>(samples.size()),
                                  bytes.data());
    return bytes;
}

std::string encodeWave(const Audio &audio)
{
    const auto size = static_cast<std::uint32_t>(audio.samples.size() * bytesPerSample);
    const auto rate = static_cast<std::uint32_t>(audio.sampleRate);
    std::string bytes = "RIFF";
    append(bytes, size + 36, 4); // what follows: the rest of the head and the samples
    bytes += "WAVEfmt ";
    append(bytes, 16, 4);                    // bytes that describe the samples
    append(bytes, 1, 2);                     // PCM
    append(bytes, 1, 2);                     // channels
    append(bytes, rate, 4);                  // frames per second
    append(bytes, rate * bytesPerSample, 4); // bytes per second
    append(bytes, bytesPerSample, 2);        // bytes per frame
    append(bytes, 8 * bytesPerSample, 2);    // bits per sample
    bytes += "data";
    append(bytes, size, 4);
    return bytes + encodePcm(audio);
}

} // namespace localservice
