#pragma once

#include <cstdio>

namespace Terminal {

/// Whether @p stream is a terminal, and no file or pipe.
bool is(std::FILE *stream);

} // namespace Terminal
