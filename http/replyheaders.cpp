#include "http/replyheaders.h"

#include <algorithm>
#include <iterator>

namespace {

bool isRedirecting(const QNetworkReply &reply)
{
    switch (reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt()) {
    case 301:
    case 302:
    case 303:
    case 305:
    case 307:
    case 308:
        return true;
    default: // Qt follows no other
        return false;
    }
}

using Headers = QList<QNetworkReply::RawHeaderPair>;

// Qt joins values of one name with a comma, those of Set-Cookie with a line feed, and replaces
// Location.
QByteArray valueAfter(const Headers &redirecting, const QNetworkReply::RawHeaderPair &joined)
{
    for (const QNetworkReply::RawHeaderPair &header : redirecting) {
        if (header.first.compare(joined.first, Qt::CaseInsensitive) != 0)
            continue;
        for (const char *separator : {", ", "\n"}) {
            const QByteArray before = header.second + separator;
            if (joined.second.startsWith(before))
                return joined.second.mid(before.size());
        }
    }
    return joined.second;
}

} // namespace

// The headers that Qt has at that moment it drops itself.
void ReplyHeaders::onRedirected()
{
    m_isRedirected = true;
    m_redirecting.clear();
}

void ReplyHeaders::onMetaDataChanged(const QNetworkReply &reply)
{
    if (m_isRedirected && isRedirecting(reply))
        m_redirecting = reply.rawHeaderPairs();
}

QList<QNetworkReply::RawHeaderPair> ReplyHeaders::of(const QNetworkReply &reply) const
{
    const Headers &joined = reply.rawHeaderPairs();
    if (m_redirecting.isEmpty() || isRedirecting(reply))
        return joined;
    // Qt moves a header that it sets again to the end. What still stands at the beginning, in its
    // order, is the redirecting answer's alone.
    Headers own;
    auto redirecting = m_redirecting.cbegin();
    for (const QNetworkReply::RawHeaderPair &header : joined) {
        const auto left = own.isEmpty() ? std::find(redirecting, m_redirecting.cend(), header)
                                        : m_redirecting.cend();
        if (left == m_redirecting.cend())
            own.append({header.first, valueAfter(m_redirecting, header)});
        else
            redirecting = std::next(left);
    }
    return own;
}
