#include "localservice/catalogue/music.h"

#include <algorithm>
#include <cmath>

namespace localservice {

namespace {

constexpr int sampleRate = 22050;
constexpr double fullTurn = 6.283185307179586;
constexpr double attack = 0.02;  // seconds
constexpr double release = 0.08; // seconds
constexpr double melodyLoudness = 0.28;
constexpr double bassLoudness = 0.18;

double frequency(int pitch) { return 440 * std::exp2(pitch / 12.0); }

// The loudness of a note in its course, from 0 to 1. It begins and ends with silence, so that
// nothing clicks. Times are in seconds.
double envelope(double time, double duration)
{
    const double rise = std::min(1.0, time / attack);
    const double fall = std::min(1.0, (duration - time) / release);
    return rise * fall * std::exp(-1.5 * time / duration);
}

// A tone with two overtones.
double tone(double turns)
{
    return std::sin(fullTurn * turns) + 0.35 * std::sin(2 * fullTurn * turns)
           + 0.12 * std::sin(3 * fullTurn * turns);
}

// Mixes notes into what the audio has already.
void add(Audio &audio, const std::vector<Tune::Note> &notes, double beat, double loudness)
{
    std::size_t begin = 0;
    for (const Tune::Note &note : notes) {
        const double duration = note.beats * beat;
        const auto count = static_cast<std::size_t>(std::lround(duration * sampleRate));
        audio.samples.resize(std::max(audio.samples.size(), begin + count), 0.0F);
        for (std::size_t i = 0; i < count; ++i) {
            const double time = static_cast<double>(i) / sampleRate;
            const double sample = tone(frequency(note.pitch) * time) * envelope(time, duration);
            audio.samples[begin + i] += static_cast<float>(loudness * sample);
        }
        begin += count;
    }
}

} // namespace

const std::vector<Tune> &tunes()
{
    static const std::vector<Tune> all{
        {"morning-walk.wav",
         "Morning walk",
         0.25,
         {{3, 2},
          {7, 2},
          {10, 2},
          {7, 2},
          {8, 2},
          {12, 2},
          {10, 4},
          {8, 2},
          {7, 2},
          {5, 2},
          {7, 2},
          {3, 8}},
         {{-21, 8}, {-16, 8}, {-14, 8}, {-21, 8}}},
        {"quiet-evening.wav",
         "Quiet evening",
         0.5,
         {{0, 2}, {3, 1}, {7, 1}, {5, 2}, {3, 2}, {2, 2}, {-2, 2}, {0, 4}},
         {{-24, 4}, {-28, 4}, {-26, 4}, {-24, 4}}},
        {"light-steps.wav",
         "Light steps",
         0.2,
         {{5, 1},  {9, 1},  {12, 1}, {9, 1},  {5, 1}, {9, 1}, {12, 2}, {10, 1},
          {7, 1},  {10, 1}, {14, 1}, {12, 4}, {5, 1}, {9, 1}, {12, 1}, {17, 1},
          {14, 2}, {12, 2}, {10, 1}, {9, 1},  {7, 1}, {4, 1}, {5, 12}},
         {{-19, 8}, {-14, 4}, {-12, 4}, {-19, 8}, {-12, 4}, {-19, 12}}},
    };
    return all;
}

Audio play(const Tune &tune)
{
    Audio audio{sampleRate, {}};
    add(audio, tune.melody, tune.beat, melodyLoudness);
    add(audio, tune.bass, tune.beat, bassLoudness);
    return audio;
}

} // namespace localservice
