#pragma once

#include "localservice/speech/audio.h"

#include <string>
#include <vector>

namespace localservice {

/// A melody and its bass, each one note after another.
struct Tune
{
    /// A tone of a length.
    struct Note
    {
        int pitch; ///< Half-tones above the A of 440 Hz.
        int beats; ///< Its length.
    };

    std::string file; ///< The name of its recording.
    std::string name; ///< The title that people see.
    double beat;      ///< The length of a beat in seconds.
    std::vector<Note> melody;
    std::vector<Note> bass; ///< Begins with the melody.
};

/// The tracks of background music.
const std::vector<Tune> &tunes();

/// Plays a tune; the same one gives the same sound.
Audio play(const Tune &tune);

} // namespace localservice
