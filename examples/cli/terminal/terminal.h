#pragma once

#include "commandline/options.h"

#include <cstdio>

namespace Terminal {

/// Whether @p stream is a terminal, and no file or pipe.
bool is(std::FILE *stream);

/// The columns of the terminal @p stream; 0: it is none, or does not say.
int columns(std::FILE *stream);

/// Has colours() say what the user wishes.
void setColour(Colour colour);

/// Whether what goes to @p stream is coloured. Unless the user says so, it is on a terminal where
/// NO_COLOR is not set.
bool colours(std::FILE *stream);

} // namespace Terminal
