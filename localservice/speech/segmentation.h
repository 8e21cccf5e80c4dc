#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace localservice {

/// A part of a recording, in samples: from the first one to before the last one.
struct Segment
{
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// Cuts mono sound at its pauses. What is louder than the recording's own background counts as
/// speech; a little of the silence around it stays. No segment is longer than 12 seconds. Silence
/// alone has no segments.
std::vector<Segment> segmentsOfSpeech(const std::vector<std::int16_t> &samples, int sampleRate);

} // namespace localservice
