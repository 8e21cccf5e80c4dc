#pragma once

#include <cstdio>

namespace Terminal {

/// Whether @p stream is shown to, or typed by, somebody and is no file or pipe.
bool is(std::FILE *stream);

} // namespace Terminal
