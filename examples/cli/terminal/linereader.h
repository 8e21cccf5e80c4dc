#pragma once

#include <QObject>
#include <QString>

/// Reads one line from standard input while the event loop runs on.
class LineReader : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(LineReader)

public:
    using QObject::QObject;

    /// To be called once; answered by read(). The thread that reads waits for a line even when the
    /// program ends, so the program must not wait for that thread.
    void start();

Q_SIGNALS:
    /// @p line is without its line break; at the end of the input it is empty.
    void read(const QString &line);
};
