#pragma once

#include "localservice/speech/audio.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace localservice {

/// The way in which a text is spoken.
struct Speaking
{
    std::string voice = "rms"; ///< One that hasVoice().
    int sampleRate = 16000;    ///< Hz, of the result.
    int volume = 50;           ///< 0: silence, 50: the voice's own, 100: twice that, clipped.
    int speechRate = 0;        ///< -500: half as fast, 0: the voice's own, 500: twice as fast.
    int pitchRate = 0; ///< -500: an octave lower, 0: the voice's own, 500: an octave higher.
};

/// Speaks English texts. May be used by several threads, one of which is served at a time: the
/// engine is not made for several.
class Synthesizer
{
public:
    /// Loads the voices. @p stopping outlives this.
    explicit Synthesizer(const std::atomic<bool> &stopping);
    ~Synthesizer();

    Synthesizer(const Synthesizer &) = delete;
    Synthesizer &operator=(const Synthesizer &) = delete;

    /// Whether the engine has the voice @p name.
    bool hasVoice(const std::string &name) const;

    /// Speaks a speakableText() that is not empty, with a short pause between sentences. The same
    /// text and settings give the same sound. Refusal if the engine fails or the result would be
    /// longer than @p longest seconds, and at the next sentence once the service is stopping or the
    /// client of this thread has gone.
    Audio speak(const std::string &text, const Speaking &speaking, int longest);

private:
    class Voice;

    Audio speakPiece(const std::string &piece, const Speaking &speaking);

    const std::atomic<bool> &m_stopping;
    std::mutex m_engine; // guards the voices' settings and every call of the engine
    std::map<std::string, std::unique_ptr<Voice>> m_voices;
};

} // namespace localservice
