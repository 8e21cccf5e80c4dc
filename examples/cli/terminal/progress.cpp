#include "terminal/progress.h"

#include "terminal/console.h"
#include "terminal/terminal.h"

#include <cstdio>

Progress::Progress(bool enabled)
    : m_enabled(enabled && Terminal::is(stderr))
{
}

Progress::~Progress() { clear(); }

void Progress::tell(const QString &line)
{
    clear();
    if (m_enabled)
        Console::show(Console::onOneLine(line) + QLatin1Char('\n'));
}

void Progress::show(const QString &text)
{
    if (!m_enabled)
        return;
    // A line that went on below could not be rewritten.
    const int columns = Terminal::columns(stderr);
    const QString line = columns > 0 ? text.left(columns - 1) : text;
    // Blanks clear the rest of the line. Not every console knows the escape sequence for that.
    Console::show(QLatin1Char('\r') + line.leftJustified(m_width));
    m_width = line.size();
}

void Progress::clear()
{
    if (m_width == 0)
        return;
    show(QString());
    std::fputc('\r', stderr);
}
