#pragma once

#include "benchmarks/contender.h"
#include "benchmarks/work.h"

#include <QByteArray>
#include <QEventLoop>
#include <QString>

/// A contender on Qt's event loop, which keeps as many requests under way as the work wants.
class EventLoopContender : public Contender
{
public:
    void perform(const Work &work, int count) override;

protected:
    /// Sends one request, whose end calls answered() or fail().
    virtual void send(const Work &work) = 0;

    /// A request is over, with @p bytes of body.
    void answered(qint64 bytes);
    [[noreturn]] static void fail(const QByteArray &text);

    QByteArray posted(const Work &work) const;

private:
    const Work *m_work = nullptr;
    int m_toSend = 0;
    int m_underWay = 0;
    QEventLoop m_loop;
};
