#include "tests/http/httptesting.h"

#include "tests/support/patience.h"

#include <QDebug>
#include <QLibrary>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QVariant>

WireRequest::WireRequest(const QByteArray &bytes)
{
    const int headEnd = bytes.indexOf("\r\n\r\n");
    QList<QByteArray> lines;
    int from = 0;
    while (from < headEnd) {
        const int to = bytes.indexOf("\r\n", from);
        lines.append(bytes.mid(from, to - from));
        from = to + 2;
    }
    line = lines.isEmpty() ? QByteArray() : lines.takeFirst();
    for (const QByteArray &header : qAsConst(lines)) {
        const int colon = header.indexOf(": ");
        headers.append(qMakePair(header.left(colon), header.mid(colon + 2)));
    }
    body = bytes.mid(headEnd + 4);
}

QByteArray WireRequest::header(const QByteArray &name) const
{
    QList<QByteArray> values;
    for (const auto &header : headers) {
        if (header.first.compare(name, Qt::CaseInsensitive) == 0)
            values.append(header.second);
    }
    return values.size() == 1 ? values.first()
                              : '<' + QByteArray::number(values.size()) + " headers>";
}

bool HttpTesting::waitUntilGone(const QObject *object)
{
    QSignalSpy gone(object, &QObject::destroyed);
    return gone.wait(patienceMs);
}

QByteArray HttpTesting::wire(const QByteArray &verb, const QByteArray &path, quint16 port,
                             const QByteArray &ownLines, const QByteArray &body)
{
    return verb + ' ' + path + " HTTP/1.1\r\nHost: localhost:" + QByteArray::number(port) + "\r\n"
           + ownLines + "Content-Length: " + QByteArray::number(body.size())
           + "\r\nConnection: Keep-Alive\r\nAccept-Encoding: gzip, deflate\r\n"
             "User-Agent: Mozilla/5.0\r\n\r\n"
           + body;
}

QByteArray HttpTesting::withoutLanguage(const QByteArray &request)
{
    const int from = request.indexOf("Accept-Language: ");
    const int to = request.indexOf("\r\n", from) + 2;
    return from < 0 ? request : request.left(from) + request.mid(to);
}

QString HttpTesting::recorded(const QVariant &value)
{
    QString text;
    if (value.canConvert<QString>())
        return value.toString();
    QDebug(&text).nospace() << value;
    return text;
}

void HttpTesting::addDownloadRows()
{
    QTest::addColumn<bool>("download");
    QTest::newRow("body") << false;
    QTest::newRow("download") << true;
}

quint16 HttpTesting::deadPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort(); // free again on return
}

bool HttpTesting::isUnderWine()
{
    return QLibrary::resolve(QStringLiteral("ntdll"), "wine_get_version") != nullptr;
}
