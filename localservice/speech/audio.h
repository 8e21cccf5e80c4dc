#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace localservice {

/// Sound of one channel.
struct Audio
{
    int sampleRate = 0;         ///< Hz.
    std::vector<float> samples; ///< From -1 to 1; beyond that they are clipped when encoded.
};

/// The use that is made of a recording of two channels.
enum class Channels {
    MixDown,   ///< Their mean.
    FirstOnly, ///< The first one alone.
};

/// Throws a Refusal unless the file at @p path is RIFF/WAVE with 16-bit PCM samples, one or two
/// channels, 8000 to 192000 Hz, complete, not empty and no longer than @p longest seconds.
void checkWave(const std::filesystem::path &path, int longest);

/// Reads a file of that kind into memory; a Refusal for any other.
Audio readWave(const std::filesystem::path &path, Channels channels, int longest);

/// Converts @p audio to another rate, in Hz; Refusal if that fails.
Audio resampled(Audio audio, int sampleRate);

/// The samples as 16-bit integers, clipped to their range.
std::vector<std::int16_t> toPcm(const Audio &audio);

/// The samples as 16-bit little-endian integers without a header.
std::string encodePcm(const Audio &audio);

/// The bytes of a RIFF/WAVE file of 16-bit PCM samples.
std::string encodeWave(const Audio &audio);

} // namespace localservice
