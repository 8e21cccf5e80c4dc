#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

class QNetworkReply;

/// The file that a download writes to, and what tells whether all of the body has got there.
class DownloadFile
{
public:
    /// Opens the file @p name: at its end if it is to be continued and exists, else emptied. False
    /// when it cannot be written.
    bool open(const QString &name, bool isContinued);
    bool isOpen() const { return m_file.isOpen(); }
    bool hasFailedToOpen() const { return m_hasFailedToOpen; }
    void close() { m_file.close(); }

    /// Empty before it is opened.
    QString name() const { return m_file.fileName(); }

    /// Appends @p data; gives the number of bytes that are on the disk, -1 when none are.
    qint64 write(const QByteArray &data);

    /// For each redirect that @p reply follows.
    void noteRedirect();
    /// For each time that headers of @p reply became known.
    void noteHeaders(const QNetworkReply &reply);

    /// Whether less has come for the open file than @p reply announced.
    bool isCutOff(const QNetworkReply &reply) const;

private:
    /// What Qt still has of a redirecting answer, and joins with what the next one says.
    struct Leftover
    {
        QByteArray length;
        QByteArray coding;
    };

    QFile m_file;
    bool m_hasFailedToOpen = false;
    qint64 m_received = 0; ///< Bytes of this transfer, written or not.
    Leftover m_leftover;
};
