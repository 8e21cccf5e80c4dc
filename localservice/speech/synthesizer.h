#pragma once

#include "localservice/speech/audio.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace localservice {

/// How a text is spoken.
struct Speaking
{
    std::string voice = "rms";
    int sampleRate = 16000; ///< Hz, of the result.
    int volume = 50;        ///< 0: silence, 50: the voice's own, 100: twice that, clipped.
    int speechRate = 0;     ///< -500: half as fast, 0: the voice's own, 500: twice as fast.
    int pitchRate = 0;      ///< -500: an octave lower, 0: the voice's own, 500: an octave higher.
};

/// Speaks English texts. May be used by several threads, one of which is served at a time: the
/// engine is not made for several.
class Synthesizer
{
public:
    /// Once @p stopping is set, or the client has gone, work ends with a Refusal within a sentence
    /// or two.
    explicit Synthesizer(const std::atomic<bool> &stopping);
    ~Synthesizer();

    Synthesizer(const Synthesizer &) = delete;
    Synthesizer &operator=(const Synthesizer &) = delete;

    bool hasVoice(const std::string &name) const;

    /// Speaks a text that speakableText() has returned, which is not empty, with a short pause
    /// between sentences. The same text and settings give the same sound. Refusal if the engine
    /// fails or the result would be longer than @p longest seconds.
    Audio speak(const std::string &text, const Speaking &speaking, int longest);

private:
    class Voice;

    Audio speakPiece(const std::string &piece, const Speaking &speaking);

    const std::atomic<bool> &m_stopping;
    std::mutex m_engine; // guards the voices' settings and every call of the engine
    std::map<std::string, std::unique_ptr<Voice>> m_voices;
};

} // namespace localservice
