#pragma once

#include <QtGlobal>

/// What is done with an answer.
enum class Kind {
    Memory, ///< It is received whole and its length checked.
    File,   ///< It is written to the file downloadedFile, which is not there before.
    Voices, ///< It becomes the records of voices.
    Speech, ///< It becomes the audio of a synthesis.
    Start,  ///< All that is needed for it is made before, and goes afterwards.
};

/// Where downloads go, in the folder that the program runs in.
constexpr char downloadedFile[] = "downloaded";

/// Something that every contender can be asked to do over and over.
struct Work
{
    const char *name = "";
    Kind kind = Kind::Memory;
    const char *address = "";
    qint64 answerBytes = 0; ///< Of the body, except of those that become records.
    int postedBytes = 0;    ///< 0: a GET.
    int inFlight = 1;       ///< How many requests are under way at a time.
};

/// Null when there is no such work.
const Work *workNamed(const char *name);

/// What goes before a work to have the connection made and the libraries loaded; null where they
/// are part of the work.
const Work *warmUpFor(const Work &work);
