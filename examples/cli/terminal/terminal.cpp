#include "terminal/terminal.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

Colour wish = Colour::Auto;

} // namespace

bool Terminal::is(std::FILE *stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

void Terminal::setColour(Colour colour) { wish = colour; }

bool Terminal::colours(std::FILE *stream)
{
    if (wish != Colour::Auto)
        return wish == Colour::Always;
    return is(stream) && qEnvironmentVariableIsEmpty("NO_COLOR");
}
