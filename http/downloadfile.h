#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

class QNetworkReply;

/// The file of a download. It counts what comes, so that a body that was cut off is noticed.
class DownloadFile
{
public:
    /// Opens the file @p name for writing: at its end when @p isContinued and it exists, else
    /// emptied. False when that fails.
    bool open(const QString &name, bool isContinued);
    bool isOpen() const { return m_file.isOpen(); }
    bool hasFailedToOpen() const { return m_hasFailedToOpen; }
    void close() { m_file.close(); }

    /// The name that open() was given; empty before.
    QString name() const { return m_file.fileName(); }

    /// Writes @p data behind what is there. Returns how many bytes of it the disk took; -1: none.
    qint64 write(const QByteArray &data);

    /// To be called for each redirect that the reply follows.
    void noteRedirect();
    /// To be called each time headers of @p reply have become known.
    void noteHeaders(const QNetworkReply &reply);

    /// Whether less has come than @p reply announced. False while no file is open.
    bool isCutOff(const QNetworkReply &reply) const;

private:
    /// Headers of a redirecting answer that Qt has kept, and joins with those of the next answer.
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
