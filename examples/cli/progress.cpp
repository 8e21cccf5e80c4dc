#include "progress.h"

#include <QByteArray>

#include <cstdio>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

bool isTerminal(std::FILE *stream)
{
#ifdef Q_OS_WIN
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

} // namespace

Progress::Progress(bool enabled)
    : m_enabled(enabled && isTerminal(stderr))
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
