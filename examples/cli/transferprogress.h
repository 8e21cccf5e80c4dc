#pragma once

#include <QElapsedTimer>
#include <QString>

/// The line about a transfer: how much is there, how fast it goes, how long it will take.
class TransferProgress
{
public:
    /// The transfer begins now, with @p kept bytes there of @p length (-1: not known).
    TransferProgress(qint64 kept, qint64 length);

    /// The line after @p received more bytes.
    QString line(qint64 received) const;

private:
    qint64 m_kept;
    qint64 m_length;
    QElapsedTimer m_since;
};
