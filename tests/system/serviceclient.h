#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QString>

class QNetworkRequest;

/// A client of the service that does without the library: it sends its own HTTPS requests.
class ServiceClient
{
    Q_DISABLE_COPY(ServiceClient)

public:
    struct Reply
    {
        int status = 0; ///< Of HTTP; 0: there was no reply.
        QByteArray body;
        QList<QNetworkReply::RawHeaderPair> headers{};

        /// The value of a header, whatever the case of its name; empty if there is none.
        QByteArray header(const QByteArray &name) const;
        /// The code of the envelope; -1: there is none.
        int code() const;
        /// Whether this is the service's way to refuse: a code, and a message that says why.
        bool isRefusal() const;
        /// Whether this is the service's way to agree.
        bool isSuccess() const;
        QJsonObject data() const;
    };

    explicit ServiceClient(const QString &authority);

    /// POST of @p body to the operation @p name, with an Authorization header if one is given.
    Reply post(const QString &name, const QByteArray &body,
               const QByteArray &authorization = QByteArray());
    Reply post(const QString &name, const QJsonObject &body,
               const QByteArray &authorization = QByteArray());

    /// POST of @p body to any address.
    Reply postTo(const QString &address, const QByteArray &body = QByteArray());

    /// The credentials for an upload.
    QJsonObject credentials();

    /// PUT to the storage, with a security token if one is given.
    Reply put(const QString &address, const QByteArray &body, const QString &securityToken);
    Reply get(const QString &address, const QString &securityToken = QString());

    Reply head(const QString &address);

    /// Sends a request line as it is; an HTTP client would tidy its path.
    Reply verbatim(const QByteArray &requestLine, const QByteArray &headers,
                   const QByteArray &body = QByteArray());

    /// The body of a request to speak @p text as a WAVE file of 16 kHz.
    static QJsonObject speech(const char *feature, const QString &text);

    /// "Bearer " and the token that the service takes.
    static QByteArray authorization();

private:
    QNetworkRequest request(const QString &address) const;
    Reply wait(QNetworkReply *reply);

    QString m_authority;
    QNetworkAccessManager m_manager;
};
