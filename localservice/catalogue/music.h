#pragma once

#include "localservice/speech/audio.h"

#include <string>
#include <vector>

namespace localservice {

/// A melody and its bass, each one note after another.
struct Tune
{
    struct Note
    {
        int pitch; ///< Half-tones from the A of 440 Hz.
        int beats; ///< How long it is.
    };

    std::string file; ///< The name of its recording.
    std::string name; ///< What people see.
    double beat;      ///< Its length in seconds.
    std::vector<Note> melody;
    std::vector<Note> bass;
};

/// The tracks of background music.
const std::vector<Tune> &tunes();

/// Plays one; the same tune gives the same sound.
Audio play(const Tune &tune);

} // namespace localservice
