#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace localservice {

/// A part of a recording.
struct Segment
{
    std::size_t begin = 0; ///< The first sample.
    std::size_t end = 0;   ///< The sample behind the last one.
};

/// Cuts sound of one channel, whose rate is in Hz, at its pauses. Speech is what is louder than the
/// recording's own background; a quarter of a second around it stays. The segments are in order,
/// none overlaps another, and none is longer than 12 seconds. Silence alone has none.
std::vector<Segment> segmentsOfSpeech(const std::vector<std::int16_t> &samples, int sampleRate);

} // namespace localservice
