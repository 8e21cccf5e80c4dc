// Fuzzes how the local service reads recordings. The input is a recording.

#include "localservice/speech/audio.h"
#include "input.h"
#include "localservice/base/refusal.h"
#include "localservice/speech/segmentation.h"
#include "temporaryfolder.h"

using namespace localservice;

namespace {

constexpr int longest = 5; // seconds
constexpr int modelRate = 16000;

bool isAccepted(const std::filesystem::path &path)
{
    try {
        checkWave(path, longest);
        return true;
    } catch (const Refusal &refusal) {
        require(refusal.code() == Code::UnusableAudio || refusal.code() == Code::TooLarge,
                "a recording is refused as unusable or too large");
        return false;
    }
}

void checkSegments(const Audio &audio)
{
    const auto samples = toPcm(resampled(audio, modelRate));
    std::size_t last = 0;
    for (const Segment &segment : segmentsOfSpeech(samples, modelRate)) {
        require(segment.begin >= last && segment.begin < segment.end
                    && segment.end <= samples.size(),
                "segments are in order and within the recording");
        last = segment.end;
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const TemporaryFolder folder;
    const std::filesystem::path path = folder.write("f.wav", Input(data, size).rest());
    if (!isAccepted(path))
        return 0;
    const Audio audio = readWave(path, Channels::MixDown, longest);
    const Audio first = readWave(path, Channels::FirstOnly, longest);
    require(audio.sampleRate >= 8000 && audio.sampleRate <= 192000 && !audio.samples.empty()
                && first.samples.size() == audio.samples.size()
                && audio.samples.size() <= std::size_t(longest) * std::size_t(audio.sampleRate),
            "a recording that is accepted is within the limits");
    const Audio again =
        readWave(folder.write("g.wav", encodeWave(audio)), Channels::MixDown, longest);
    require(again.sampleRate == audio.sampleRate && toPcm(again) == toPcm(audio),
            "a recording that is written is read as it was");
    checkSegments(audio);
    return 0;
}
