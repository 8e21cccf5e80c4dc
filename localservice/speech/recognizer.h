#pragma once

#include "localservice/speech/audio.h"

#include <QSemaphore>

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace localservice {

/// What was said between two pauses.
struct Sentence
{
    std::string text;  ///< Lower-case words with single blanks between them; never empty.
    int beginTime = 0; ///< Milliseconds from the start of the recording.
    int endTime = 0;   ///< Milliseconds.
};

/// Recognises English speech. May be used by several threads.
class Recognizer
{
public:
    /// Loads the model under @p modelDir; std::runtime_error if that fails. Up to @p decoders
    /// recordings are worked on at a time; others wait. @p stopping outlives this.
    Recognizer(const std::string &modelDir, int decoders, const std::atomic<bool> &stopping);
    ~Recognizer();

    Recognizer(const Recognizer &) = delete;
    Recognizer &operator=(const Recognizer &) = delete;

    /// The sentences of a recording, in their order; none if nothing was said. Refusal if the
    /// engine fails, and at the next sentence once the service is stopping or the client of this
    /// thread has gone.
    std::vector<Sentence> recognize(Audio recording);

private:
    class Decoder;

    void checkWanted() const;
    std::unique_ptr<Decoder> takeDecoder();

    const std::string m_modelDir;
    const std::atomic<bool> &m_stopping;
    QSemaphore m_seats; // of those who have a decoder
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Decoder>> m_idle; // guarded by m_mutex
};

} // namespace localservice
