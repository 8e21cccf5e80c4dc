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

    /// The end of a message that the file cannot be opened, ": Windows takes no ..." where its name
    /// has a character that is forbidden there; empty for other names and on other systems.
    QString nameProblem() const;

    /// Bytes that were there and that the disk took.
    struct Taken
    {
        qint64 read = 0;
        qint64 written = 0;
    };

    /// Takes all that @p source has and writes it behind what is there; nothing behind a piece that
    /// the disk did not take as a whole.
    Taken takeFrom(QIODevice *source);

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
    QByteArray m_piece;    ///< Kept, since memory for each piece would cost more than writing it.
    qint64 m_received = 0; ///< Bytes of this transfer, written or not.
    Leftover m_leftover;
};
