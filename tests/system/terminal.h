#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>

/// A terminal of 24 rows, in which a program under test may run.
class Terminal
{
    Q_DISABLE_COPY(Terminal)

public:
    explicit Terminal(quint16 columns = 80);
    ~Terminal();

    /// The file to be opened by the program.
    QString name() const;

    /// What was written since the last call, as the program wrote it.
    QByteArray read();

    /// The lines that a user sees in the end: what a carriage return overwrites is gone.
    static QByteArrayList linesOf(const QByteArray &written);

private:
    int m_end = -1;
    int m_other = -1; ///< Open, so that what was written stays when the program ends.
};
