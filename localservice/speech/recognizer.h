#pragma once

#include "localservice/speech/audio.h"

#include <atomic>
#include <condition_variable>
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

/// Recognises English speech. May be used by several threads at a time.
class Recognizer
{
public:
    /// Loads the model under @p modelDir; std::runtime_error if that fails. Up to @p decoders
    /// recordings are worked on at the same time; others wait. Once @p stopping is set, or the
    /// client has gone, work ends with a Refusal at the next sentence.
    Recognizer(const std::string &modelDir, std::size_t decoders,
               const std::atomic<bool> &stopping);
    ~Recognizer();

    Recognizer(const Recognizer &) = delete;
    Recognizer &operator=(const Recognizer &) = delete;

    /// The sentences of a recording, in their order; none if nothing was said.
    std::vector<Sentence> recognize(Audio recording);

private:
    class Decoder;

    void checkWanted() const;
    std::unique_ptr<Decoder> takeDecoder();
    void giveBack(std::unique_ptr<Decoder> decoder);

    const std::string m_modelDir;
    const std::atomic<bool> &m_stopping;
    std::mutex m_mutex;
    std::condition_variable m_returned;
    std::vector<std::unique_ptr<Decoder>> m_idle; // guarded by m_mutex
    std::size_t m_unmade = 0;                     // decoders that may yet be made; likewise
};

} // namespace localservice
