#include "benchmarks/eventloopcontender.h"

#include <QFile>

#include <algorithm>

void EventLoopContender::perform(const Work &work, int count)
{
    if (count == 0)
        return;
    m_work = &work;
    m_underWay = std::min(count, work.inFlight);
    m_toSend = count - m_underWay;
    for (int i = 0; i < m_underWay; ++i)
        send(work);
    m_loop.exec();
}

void EventLoopContender::answered(qint64 bytes)
{
    if (bytes != m_work->answerBytes)
        fail("a body of " + QByteArray::number(bytes) + " bytes");
    if (m_toSend > 0) {
        --m_toSend;
        send(*m_work);
    } else if (--m_underWay == 0) {
        m_loop.quit();
    }
}

void EventLoopContender::fail(const QByteArray &text) { qFatal("%s", text.constData()); }

QByteArray EventLoopContender::posted(const Work &work) const
{
    return QByteArray(work.postedBytes, 'x');
}
