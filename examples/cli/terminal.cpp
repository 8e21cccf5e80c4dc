#include "terminal.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

bool Terminal::is(std::FILE *stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}
