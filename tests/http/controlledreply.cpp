#include "tests/http/controlledreply.h"

ControlledReply::ControlledReply(QNetworkAccessManager::Operation operation,
                                 const QNetworkRequest &request, QObject *parent)
    : QNetworkReply(parent)
{
    setOperation(operation);
    setRequest(request);
    setUrl(request.url());
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

void ControlledReply::receive(const QByteArray &bytes)
{
    m_unread += bytes;
    Q_EMIT readyRead();
}

void ControlledReply::begin(int status, const QList<RawHeaderPair> &headers)
{
    setAttribute(QNetworkRequest::HttpStatusCodeAttribute, status);
    const QList<QByteArray> before = rawHeaderList();
    for (const QByteArray &name : before)
        setRawHeader(name, QByteArray()); // removes it
    for (const RawHeaderPair &header : headers)
        setRawHeader(header.first, header.second);
    Q_EMIT metaDataChanged();
}

void ControlledReply::setHeader(const QByteArray &name, const QByteArray &value)
{
    setRawHeader(name, value);
}

void ControlledReply::succeed()
{
    setFinished(true);
    Q_EMIT finished();
}

void ControlledReply::fail(NetworkError code, const QString &text)
{
    setError(code, text);
    setFinished(true);
    const QPointer<ControlledReply> self(this);
    Q_EMIT errorOccurred(code);
    if (self)
        Q_EMIT finished();
}

void ControlledReply::abort()
{
    if (!isFinished())
        fail(OperationCanceledError, QStringLiteral("aborted"));
}

qint64 ControlledReply::bytesAvailable() const
{
    return m_unread.size() + QNetworkReply::bytesAvailable();
}

qint64 ControlledReply::readData(char *data, qint64 maxSize)
{
    const auto size = qMin(maxSize, qint64(m_unread.size()));
    std::copy_n(m_unread.constData(), size, data);
    m_unread.remove(0, int(size));
    return size;
}

QNetworkReply *ControlledClient::createRequest(Operation operation, const QNetworkRequest &request,
                                               QIODevice *)
{
    auto *reply = new ControlledReply(operation, request, this);
    replies.append(reply);
    return reply;
}
