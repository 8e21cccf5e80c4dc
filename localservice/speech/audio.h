#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace localservice {

/// Sound of one channel. Samples are from -1 to 1; beyond that they are clipped when encoded.
struct Audio
{
    int sampleRate = 0; ///< Hz.
    std::vector<float> samples;
};

/// What becomes of a recording of two channels.
enum class Channels { MixDown, FirstOnly };

/// Refuses the file at @p path unless it is RIFF/WAVE with 16-bit PCM samples, one or two
/// channels, 8000 to 192000 Hz, complete, not empty and no longer than @p longest seconds.
void checkWave(const std::filesystem::path &path, int longest);

/// Reads a file that passes checkWave(), which it calls.
Audio readWave(const std::filesystem::path &path, Channels channels, int longest);

/// @p audio at another rate, in Hz. Refusal if the conversion fails.
Audio resampled(Audio audio, int sampleRate);

/// As 16-bit integers, clipped to their range.
std::vector<std::int16_t> toPcm(const Audio &audio);

/// As 16-bit little-endian integers without a header.
std::string encodePcm(const Audio &audio);

/// As a RIFF/WAVE file.
std::string encodeWave(const Audio &audio);

} // namespace localservice
