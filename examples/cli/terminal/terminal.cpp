#include "terminal/terminal.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <io.h>
#include <qt_windows.h>
#else
#include <sys/ioctl.h>
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

int Terminal::columns(std::FILE *stream)
{
#ifdef Q_OS_WIN
    CONSOLE_SCREEN_BUFFER_INFO info;
    const HANDLE console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    return GetConsoleScreenBufferInfo(console, &info) ? info.srWindow.Right - info.srWindow.Left + 1
                                                      : 0;
#else
    winsize size = {};
    return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
#endif
}
