#include "progress.h"

#include "terminal.h"

#include <QByteArray>

#include <cstdio>

Progress::Progress(bool enabled)
    : m_enabled(enabled && Terminal::is(stderr))
{
}

Progress::~Progress() { clear(); }

void Progress::show(const QString &text)
{
    if (!m_enabled)
        return;
    // Blanks and not an escape sequence: not every console knows those.
    const QByteArray line = text.leftJustified(m_width).toLocal8Bit();
    std::fprintf(stderr, "\r%s", line.constData());
    std::fflush(stderr);
    m_width = text.size();
}

void Progress::clear()
{
    if (m_width == 0)
        return;
    show(QString());
    std::fputc('\r', stderr);
}
