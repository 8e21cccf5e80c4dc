#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Collects the lines that go through Qt's message logger while it lives. One object at a time.
class LogCapture
{
    Q_DISABLE_COPY(LogCapture)

public:
    struct Line
    {
        QtMsgType type;
        QString text;
    };

    LogCapture();
    ~LogCapture();

    /// The lines since construction or the last clear(), in order.
    QList<Line> lines() const;

    /// The texts of one type, in order.
    QStringList texts(QtMsgType type) const;

    void clear();

private:
    QtMessageHandler m_previous;
};
