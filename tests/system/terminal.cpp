#include "terminal.h"

#include <QByteArrayList>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

Terminal::Terminal(quint16 columns)
    : m_end(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    if (m_end < 0 || grantpt(m_end) != 0 || unlockpt(m_end) != 0)
        qFatal("there is no terminal");
    m_other = ::open(ptsname(m_end), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const winsize size = {24, columns, 0, 0};
    ioctl(m_end, TIOCSWINSZ, &size);
}

Terminal::~Terminal()
{
    ::close(m_other);
    ::close(m_end);
}

QString Terminal::name() const { return QString::fromLocal8Bit(ptsname(m_end)); }

QByteArray Terminal::read()
{
    QByteArray all;
    std::array<char, 4096> some = {};
    for (ssize_t size = 1; size > 0;) {
        size = ::read(m_end, some.data(), some.size());
        all.append(some.data(), int(qMax<ssize_t>(size, 0)));
    }
    return all.replace("\r\n", "\n");
}

QByteArrayList Terminal::linesOf(const QByteArray &written)
{
    QByteArrayList lines;
    for (const QByteArray &line : written.split('\n')) {
        QByteArray seen;
        for (const QByteArray &part : line.split('\r'))
            seen.replace(0, part.size(), part);
        while (seen.endsWith(' '))
            seen.chop(1);
        lines.append(seen);
    }
    return lines;
}
