#pragma once

#include "localservice/speech/audio.h"

#include <string>
#include <vector>

namespace localservice {

/// One note after another; notes are counted in half-tones from the A of 440 Hz.
struct Tune
{
    struct Note
    {
        int pitch;
        int beats;
    };

    std::string file; ///< The name of its recording.
    std::string name; ///< What people see.
    double beat;      ///< Seconds.
    std::vector<Note> melody;
    std::vector<Note> bass;
};

/// The tracks of background music.
const std::vector<Tune> &tunes();

/// Plays one; the same tune gives the same sound.
Audio play(const Tune &tune);

} // namespace localservice
