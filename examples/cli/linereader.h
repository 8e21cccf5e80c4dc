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

    /// To be called once. A program that ends before the answer must not wait for its threads: the
    /// one that reads stays until there is a line.
    void start();

Q_SIGNALS:
    /// The line, which is empty at the end of the input too.
    void read(const QString &line);
};
