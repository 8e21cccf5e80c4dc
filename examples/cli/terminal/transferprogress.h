#pragma once

#include <QElapsedTimer>
#include <QString>

/// The line about a transfer: how much has come, how fast it goes, how long it will take.
class TransferProgress
{
public:
    /// For a transfer that begins now; @p kept bytes are there of @p length (-1: unknown).
    TransferProgress(qint64 kept, qint64 length);

    /// The line once @p received more bytes have come.
    QString line(qint64 received) const;

private:
    qint64 m_kept;
    qint64 m_length;
    QElapsedTimer m_since;
};
