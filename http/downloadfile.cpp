#include "http/downloadfile.h"

#include <QNetworkReply>

namespace {

constexpr int pieceSize = 131072; // bytes; as much as Qt takes from a socket at a time
constexpr char lengthHeader[] = "Content-Length";
constexpr char codingHeader[] = "Transfer-Encoding";

bool isRedirecting(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status > 300 && status < 400 && status != 304;
}

// Qt joins the headers of a redirecting answer with those of the last: in "145, 3000" 3000 is the
// length that counts. A value that equals the leftover is the redirecting answer's alone.
QByteArray valueOfLastAnswer(const QByteArray &joined, const QByteArray &leftover)
{
    return joined == leftover ? QByteArray() : joined.mid(joined.lastIndexOf(',') + 1).trimmed();
}

} // namespace

bool DownloadFile::open(const QString &name, bool isContinued)
{
    m_file.setFileName(name);
    const QIODevice::OpenMode mode =
        isContinued && m_file.exists() ? QIODevice::Append : QIODevice::WriteOnly;
    // Without a buffer, what the disk refuses shows at once in the result of a write.
    m_hasFailedToOpen = !m_file.open(mode | QIODevice::Unbuffered);
    return !m_hasFailedToOpen;
}

// A server's name for a file keeps the quotation marks that stood around it in the header.
QString DownloadFile::nameProblem() const
{
#ifdef Q_OS_WIN
    for (const QChar character : QStringLiteral("\"<>|?*")) {
        if (name().contains(character))
            return QStringLiteral(": Windows takes no %1 in a file name").arg(character);
    }
#endif
    return {};
}

DownloadFile::Taken DownloadFile::takeFrom(QIODevice *source)
{
    m_piece.resize(pieceSize);
    Taken taken;
    while (source->bytesAvailable() > 0) {
        const qint64 size = source->read(m_piece.data(), pieceSize);
        if (size <= 0)
            break;
        if (taken.written == taken.read)
            taken.written += qMax<qint64>(m_file.write(m_piece.constData(), size), 0);
        taken.read += size;
    }
    m_received += taken.read;
    return taken;
}

// Qt drops the headers that it has when it announces a redirect. Headers of the redirecting answer
// that become known after that, while the status is still the redirect's, it keeps. Which of the
// two happens depends on whether Qt's network thread or this one is faster.
void DownloadFile::noteRedirect() { m_leftover = {}; }

void DownloadFile::noteHeaders(const QNetworkReply &reply)
{
    if (isRedirecting(reply))
        m_leftover = {reply.rawHeader(lengthHeader), reply.rawHeader(codingHeader)};
}

// Qt often takes a connection that breaks off for the end of the body, and the file must not count
// as complete then. Where no length is announced nobody can tell. A transfer coding, such as
// chunks, overrides the length and has an end of its own.
bool DownloadFile::isCutOff(const QNetworkReply &reply) const
{
    const Leftover leftover = isRedirecting(reply) ? Leftover() : m_leftover;
    if (!isOpen() || !valueOfLastAnswer(reply.rawHeader(codingHeader), leftover.coding).isEmpty())
        return false;
    return m_received
           < valueOfLastAnswer(reply.rawHeader(lengthHeader), leftover.length).toLongLong();
}
