#pragma once

#include "http/httpclient.h"

#include <QNetworkReply>
#include <QPointer>

/// A reply whose every event is made by the test. For events that no server on loopback can bring
/// about, and for exact orders.
class ControlledReply : public QNetworkReply
{
    Q_OBJECT

public:
    ControlledReply(QNetworkAccessManager::Operation operation, const QNetworkRequest &request,
                    QObject *parent);

    /// Receives more of the body.
    void receive(const QByteArray &bytes);

    /// Receives the head of an answer.
    void begin(int status, const QList<RawHeaderPair> &headers);

    void setHeader(const QByteArray &name, const QByteArray &value);

    /// Ends without an error.
    void succeed();

    /// Ends with an error; @p text is what errorString() gives.
    void fail(NetworkError code, const QString &text);

    /// Sets what error() and errorString() give, and nothing else.
    void setErrorOnly(NetworkError code, const QString &text) { setError(code, text); }

    using QNetworkReply::receivers;

    void abort() override;
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;

private:
    QByteArray m_unread;
};

/// A client that answers with controlled replies.
class ControlledClient : public HttpClient
{
    Q_OBJECT

public:
    using HttpClient::HttpClient;

    /// The replies made so far; null where one is gone.
    QList<QPointer<ControlledReply>> replies;

protected:
    QNetworkReply *createRequest(Operation operation, const QNetworkRequest &request,
                                 QIODevice *outgoing) override;
};
