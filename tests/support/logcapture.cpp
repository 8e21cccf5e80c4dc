#include "tests/support/logcapture.h"

#include <QMutex>
#include <QMutexLocker>

namespace {

struct Captured
{
    QMutex mutex;
    QList<LogCapture::Line> lines;
};

Captured &captured()
{
    static Captured instance;
    return instance;
}

void capture(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker locker(&captured().mutex);
    captured().lines.append({type, text});
}

} // namespace

LogCapture::LogCapture()
    : m_previous(qInstallMessageHandler(capture))
{
    clear();
}

LogCapture::~LogCapture() { qInstallMessageHandler(m_previous); }

QList<LogCapture::Line> LogCapture::lines() const
{
    const QMutexLocker locker(&captured().mutex);
    return captured().lines;
}

QStringList LogCapture::texts(QtMsgType type) const
{
    QStringList texts;
    const QList<Line> all = lines();
    for (const Line &line : all) {
        if (line.type == type)
            texts.append(line.text);
    }
    return texts;
}

void LogCapture::clear()
{
    const QMutexLocker locker(&captured().mutex);
    captured().lines.clear();
}
