#include "http/downloadfile.h"

#include <QNetworkReply>

namespace {

constexpr char lengthHeader[] = "Content-Length";
constexpr char codingHeader[] = "Transfer-Encoding";

bool isRedirecting(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status > 300 && status < 400 && status != 304;
}

// "145, 3000": 145 is the length of a redirecting answer, 3000 that of the last.
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
    // Unbuffered, so that what the disk refuses is noticed when it is written.
    m_hasFailedToOpen = !m_file.open(mode | QIODevice::Unbuffered);
    return !m_hasFailedToOpen;
}

qint64 DownloadFile::write(const QByteArray &data)
{
    m_received += data.size();
    return m_file.write(data);
}

// What Qt has when a redirect is announced it drops. What comes after that, while the status is
// still that of the redirect, it keeps: that depends on which of its threads is faster.
void DownloadFile::noteRedirect() { m_leftover = {}; }

void DownloadFile::noteHeaders(const QNetworkReply &reply)
{
    if (isRedirecting(reply))
        m_leftover = {reply.rawHeader(lengthHeader), reply.rawHeader(codingHeader)};
}

// Qt often takes a connection that breaks off for the end of the body. A file must not be taken for
// complete then. Where no length is announced nobody can tell; a transfer coding, such as chunks,
// overrides the length and brings an end of its own.
bool DownloadFile::isCutOff(const QNetworkReply &reply) const
{
    const Leftover leftover = isRedirecting(reply) ? Leftover() : m_leftover;
    if (!isOpen() || !valueOfLastAnswer(reply.rawHeader(codingHeader), leftover.coding).isEmpty())
        return false;
    return m_received
           < valueOfLastAnswer(reply.rawHeader(lengthHeader), leftover.length).toLongLong();
}
