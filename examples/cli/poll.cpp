#include "poll.h"

#include <algorithm>

namespace {

constexpr int firstInterval = 200; // ms
constexpr int longestInterval = 5000;

} // namespace

Poll::Poll(QObject *parent)
    : QObject(parent)
    , m_interval(firstInterval)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Poll::due);
    m_elapsed.start();
}

void Poll::next()
{
    m_timer.start(m_interval);
    m_interval = std::min(m_interval * 3 / 2, longestInterval);
}

qint64 Poll::seconds() const { return m_elapsed.elapsed() / 1000; }
