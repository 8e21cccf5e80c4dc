#include "localservice/speech/segmentation.h"

#include <algorithm>
#include <cmath>

namespace localservice {

namespace {

constexpr std::size_t framesPerSecond = 100;
constexpr std::size_t shortestPause = 18;    // frames; shorter ones belong to the sentence
constexpr std::size_t shortestSpeech = 8;    // frames; shorter ones are clicks
constexpr std::size_t margin = 25;           // frames of silence kept at either side
constexpr std::size_t longestSegment = 1200; // frames
constexpr double faintestSpeech = 40;        // of 32767, root mean square

using Levels = std::vector<double>;

// The root mean square of every frame; the last one may be shorter.
Levels levels(const std::vector<std::int16_t> &samples, std::size_t frame)
{
    Levels result;
    for (std::size_t begin = 0; begin < samples.size(); begin += frame) {
        const std::size_t end = std::min(samples.size(), begin + frame);
        double sum = 0;
        for (std::size_t i = begin; i < end; ++i)
            sum += static_cast<double>(samples[i]) * samples[i];
        result.push_back(std::sqrt(sum / static_cast<double>(end - begin)));
    }
    return result;
}

double quantile(Levels values, double part)
{
    const auto at = static_cast<std::ptrdiff_t>(static_cast<double>(values.size() - 1) * part);
    std::nth_element(values.begin(), values.begin() + at, values.end());
    return values[static_cast<std::size_t>(at)];
}

// The least level of speech. It lies between the background, which is the level of the quietest
// twentieth, and the loudest speech, much nearer to the background.
double threshold(const Levels &values)
{
    const double background = quantile(values, 0.05);
    const double loud = quantile(values, 0.95);
    return std::max(faintestSpeech, std::min(background * 3, loud * 0.2) + loud * 0.015);
}

// The runs of speech, in frames; two with less than a pause between them are one.
std::vector<Segment> runs(const Levels &values)
{
    const double least = threshold(values);
    std::vector<Segment> result;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (values[i] < least)
            continue;
        if (!result.empty() && i - result.back().end < shortestPause)
            result.back().end = i + 1;
        else
            result.push_back({i, i + 1});
    }
    result.erase(
        std::remove_if(result.begin(), result.end(),
                       [](const Segment &run) { return run.end - run.begin < shortestSpeech; }),
        result.end());
    return result;
}

// Appends a run; one that is too long is cut where the second half of what fits is quietest.
void appendCut(std::vector<Segment> &result, Segment run, const Levels &values)
{
    while (run.end - run.begin > longestSegment) {
        const auto from = values.begin() + static_cast<std::ptrdiff_t>(run.begin);
        const auto quietest =
            std::min_element(from + longestSegment / 2, from + longestSegment) - values.begin();
        const auto cut = static_cast<std::size_t>(quietest);
        result.push_back({run.begin, cut});
        run.begin = cut;
    }
    result.push_back(run);
}

} // namespace

std::vector<Segment> segmentsOfSpeech(const std::vector<std::int16_t> &samples, int sampleRate)
{
    if (samples.empty())
        return {};
    const std::size_t frame = static_cast<std::size_t>(sampleRate) / framesPerSecond;
    const Levels values = levels(samples, frame);
    std::vector<Segment> segments;
    const std::vector<Segment> speech = runs(values);
    for (std::size_t i = 0; i < speech.size(); ++i) {
        const std::size_t before = speech[i].begin - (i == 0 ? 0 : speech[i - 1].end);
        const std::size_t after =
            (i + 1 == speech.size() ? values.size() : speech[i + 1].begin) - speech[i].end;
        // Neighbours share the pause between them, so that no word is in both.
        appendCut(segments,
                  {speech[i].begin - std::min(margin, i == 0 ? before : before / 2),
                   speech[i].end + std::min(margin, i + 1 == speech.size() ? after : after / 2)},
                  values);
    }
    for (Segment &segment : segments) {
        segment.begin *= frame;
        segment.end = std::min(samples.size(), segment.end * frame);
    }
    return segments;
}

} // namespace localservice
