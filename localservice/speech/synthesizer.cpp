#include "localservice/speech/synthesizer.h"

#include "localservice/base/refusal.h"
#include "localservice/server/connections.h"
#include "localservice/speech/speechtext.h"

extern "C" {
#include <flite/flite.h>
// This header needs what flite.h defines.
#include <flite/cst_cg.h>

cst_voice *register_cmu_us_rms(const char *voxdir);
cst_voice *register_cmu_us_kal16(const char *voxdir);
cst_voice *register_cmu_us_slt(const char *voxdir);
cst_voice *register_cmu_us_awb(const char *voxdir);

void unregister_cmu_us_rms(cst_voice *voice);
void unregister_cmu_us_kal16(cst_voice *voice);
void unregister_cmu_us_slt(cst_voice *voice);
void unregister_cmu_us_awb(cst_voice *voice);
}

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace localservice {

namespace {

constexpr int octave = 500;     // of a rate
constexpr float ownVolume = 50; // of 100
constexpr float fullScale = 32768.0F;

// The factor by which a rate, from -500 to 500, changes a speed or a pitch.
float factor(int rate) { return std::exp2(static_cast<float>(rate) / octave); }

// The samples between two sentences, where some voices hardly pause by themselves.
std::size_t pauseAt(int sampleRate) { return static_cast<std::size_t>(sampleRate) / 4; }

using Wave = std::unique_ptr<cst_wave, decltype(&delete_wave)>;

} // namespace

/// A voice of the engine and the settings of it that change.
class Synthesizer::Voice
{
public:
    using Unregister = void (*)(cst_voice *);

    Voice(cst_voice *voice, Unregister unregister)
        : m_voice(voice)
        , m_unregister(unregister)
        , m_stretch(flite_get_param_float(voice->features, "duration_stretch", 1))
    {
        const cst_val *const model = flite_get_param_val(voice->features, "cg_db", nullptr);
        if (!model)
            return;
        // A copy takes the place of the voice's own model, which is constant.
        m_model = std::make_unique<cst_cg_db>(*val_cg_db(model));
        m_hasContours = m_model->spamf0 != 0;
        flite_feat_set(voice->features, "cg_db", cg_db_val(m_model.get()));
    }
    ~Voice() { m_unregister(m_voice); }

    Voice(const Voice &) = delete;
    Voice &operator=(const Voice &) = delete;

    // A voice that has models of whole pitch contours does not heed the shift with them, so it
    // falls back to its models of single sounds when the pitch is not its own.
    void prepare(const Speaking &speaking)
    {
        flite_feat_set_float(m_voice->features, "duration_stretch",
                             m_stretch / factor(speaking.speechRate));
        flite_feat_set_float(m_voice->features, "f0_shift", factor(speaking.pitchRate));
        if (m_hasContours)
            m_model->spamf0 = speaking.pitchRate == 0 ? 1 : 0;
    }

    Wave speak(const std::string &text)
    {
        return {flite_text_to_wave(text.c_str(), m_voice), delete_wave};
    }

private:
    cst_voice *m_voice;
    Unregister m_unregister;
    const float m_stretch;
    std::unique_ptr<cst_cg_db> m_model; // of the voices that have one
    bool m_hasContours = false;
};

Synthesizer::Synthesizer(const std::atomic<bool> &stopping)
    : m_stopping(stopping)
{
    flite_init();
    m_voices["rms"] = std::make_unique<Voice>(register_cmu_us_rms(nullptr), unregister_cmu_us_rms);
    m_voices["kal16"] =
        std::make_unique<Voice>(register_cmu_us_kal16(nullptr), unregister_cmu_us_kal16);
    m_voices["slt"] = std::make_unique<Voice>(register_cmu_us_slt(nullptr), unregister_cmu_us_slt);
    m_voices["awb"] = std::make_unique<Voice>(register_cmu_us_awb(nullptr), unregister_cmu_us_awb);
}

Synthesizer::~Synthesizer() = default;

bool Synthesizer::hasVoice(const std::string &name) const { return m_voices.count(name) > 0; }

Audio Synthesizer::speak(const std::string &text, const Speaking &speaking, int longest)
{
    Audio audio;
    for (const std::string &piece : speakablePieces(text)) {
        if (m_stopping || Connections::clientHasGone())
            throw Refusal(Code::Failed, "nobody waits for it any more");
        const Audio next = speakPiece(piece, speaking);
        audio.sampleRate = next.sampleRate;
        if (!audio.samples.empty())
            audio.samples.resize(audio.samples.size() + pauseAt(next.sampleRate), 0.0F);
        audio.samples.insert(audio.samples.end(), next.samples.begin(), next.samples.end());
        if (audio.samples.size() > static_cast<std::size_t>(longest) * audio.sampleRate)
            throw Refusal(Code::TooLarge, "the text takes longer than " + std::to_string(longest)
                                              + " seconds to say");
    }
    Audio result = resampled(std::move(audio), speaking.sampleRate);
    const float gain = static_cast<float>(speaking.volume) / ownVolume;
    for (float &sample : result.samples)
        sample = std::clamp(sample * gain, -1.0F, 1.0F);
    return result;
}

Audio Synthesizer::speakPiece(const std::string &piece, const Speaking &speaking)
{
    const std::lock_guard<std::mutex> lock(m_engine);
    Voice &voice = *m_voices.at(speaking.voice);
    voice.prepare(speaking);
    std::srand(1); // the engine draws its noise from rand()
    const Wave wave = voice.speak(piece);
    if (!wave || wave->sample_rate <= 0 || wave->num_channels != 1)
        throw Refusal(Code::Failed, "the text cannot be spoken");
    Audio audio{wave->sample_rate, {}};
    audio.samples.reserve(static_cast<std::size_t>(wave->num_samples));
    for (int i = 0; i < wave->num_samples; ++i)
        audio.samples.push_back(static_cast<float>(wave->samples[i]) / fullScale);
    return audio;
}

} // namespace localservice
