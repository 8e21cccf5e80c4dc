#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QtGlobal>

/// Collects what goes through Qt's message logger while it lives. One at a time.
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

    /// Everything since construction or the last clear().
    QList<Line> lines() const;

    /// The texts of one type, in order.
    QStringList texts(QtMsgType type) const;

    void clear();

private:
    QtMessageHandler m_previous;
};
