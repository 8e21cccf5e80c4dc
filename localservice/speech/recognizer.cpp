#include "localservice/speech/recognizer.h"

#include "localservice/base/refusal.h"
#include "localservice/server/connections.h"
#include "localservice/speech/segmentation.h"

#include <QScopeGuard>

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <sstream>
#include <stdexcept>

namespace localservice {

namespace {

constexpr int modelRate = 16000; // Hz
constexpr int patience = 200;    // ms, until a client that waits is looked for

// The words of what the engine has heard. Fillers such as <sil>, [NOISE] and ++BREATH++ are none,
// and the number of a word's pronunciation, as in "a(2)", is no part of it.
std::string cleanWords(const std::string &hypothesis)
{
    std::istringstream stream(hypothesis);
    std::string result;
    std::string word;
    while (stream >> word) {
        if (word[0] == '<' || word[0] == '[' || word[0] == '+')
            continue;
        word.erase(std::min(word.size(), word.find('(')));
        if (!word.empty())
            result += (result.empty() ? "" : " ") + word;
    }
    return result;
}

int milliseconds(std::size_t samples) { return static_cast<int>(samples * 1000 / modelRate); }

} // namespace

/// An instance of the engine, for one thread at a time.
class Recognizer::Decoder
{
public:
    explicit Decoder(const std::string &modelDir)
    {
        // Standard error is for requests, and the engine would print its whole configuration. It
        // has a setting of its own for every thread.
        err_set_logfp(nullptr);
        const std::string model = modelDir + "/en-us/";
        // The engine's noise removal needs a while of background to learn from and spoils the
        // first words of clean, short recordings. Its search over the word lattice prefers
        // frequent words to the ones that were said.
        cmd_ln_t *const config = cmd_ln_init(
            nullptr, ps_args(), TRUE, "-hmm", (model + "en-us").c_str(), "-lm",
            (model + "en-us.lm.bin").c_str(), "-dict", (model + "cmudict-en-us.dict").c_str(),
            "-remove_noise", "no", "-bestpath", "no", nullptr);
        m_decoder = config ? ps_init(config) : nullptr;
        cmd_ln_free_r(config);
        if (!m_decoder)
            throw std::runtime_error("cannot load the speech model in \"" + modelDir + "\"");
    }
    ~Decoder() { ps_free(m_decoder); }

    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;

    // The words of a sentence. As a stream of its own, given at once, it has its levels normalised
    // over all of it and depends on nothing that was decoded before.
    std::string words(const std::int16_t *samples, std::size_t count)
    {
        const bool decoded = ps_start_stream(m_decoder) == 0 && ps_start_utt(m_decoder) == 0
                             && ps_process_raw(m_decoder, samples, count, FALSE, TRUE) >= 0;
        const bool ended = ps_end_utt(m_decoder) == 0;
        if (!decoded || !ended)
            throw Refusal(Code::Failed, "the recording cannot be recognised");
        int32 score = 0;
        const char *const hypothesis = ps_get_hyp(m_decoder, &score);
        return hypothesis ? cleanWords(hypothesis) : std::string();
    }

private:
    ps_decoder_t *m_decoder = nullptr;
};

Recognizer::Recognizer(const std::string &modelDir, int decoders, const std::atomic<bool> &stopping)
    : m_modelDir(modelDir)
    , m_stopping(stopping)
    , m_seats(decoders)
{
    m_idle.push_back(std::make_unique<Decoder>(m_modelDir));
}

Recognizer::~Recognizer() = default;

std::vector<Sentence> Recognizer::recognize(Audio recording)
{
    const std::vector<std::int16_t> samples = toPcm(resampled(std::move(recording), modelRate));
    while (!m_seats.tryAcquire(1, patience))
        checkWanted();
    const QSemaphoreReleaser seat(m_seats);
    std::unique_ptr<Decoder> decoder = takeDecoder();
    const auto lease = qScopeGuard([&] {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_idle.push_back(std::move(decoder));
    });
    std::vector<Sentence> sentences;
    for (const Segment &segment : segmentsOfSpeech(samples, modelRate)) {
        checkWanted();
        const std::string words =
            decoder->words(samples.data() + segment.begin, segment.end - segment.begin);
        if (!words.empty())
            sentences.push_back({words, milliseconds(segment.begin), milliseconds(segment.end)});
    }
    return sentences;
}

void Recognizer::checkWanted() const
{
    if (m_stopping || Connections::clientHasGone())
        throw Refusal(Code::Failed, "nobody waits for it any more");
}

// Loading takes a while, so a decoder is made only when all that there are have work.
std::unique_ptr<Recognizer::Decoder> Recognizer::takeDecoder()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_idle.empty())
        return std::make_unique<Decoder>(m_modelDir);
    auto decoder = std::move(m_idle.back());
    m_idle.pop_back();
    return decoder;
}

} // namespace localservice
