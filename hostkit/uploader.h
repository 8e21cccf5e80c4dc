#pragma once

#include "hostkit/reason.h"

#include <QByteArray>
#include <QObject>
#include <QString>

class HttpClient;
class ServiceLease;
struct OSS_SIGN_INFO;

/// Uploads a recording to the service's object storage, where the service can read it.
class Uploader : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Uploader)

public:
    Uploader(ServiceLease *service, QObject *parent);

    /// Uploads the file @p path, once; answered by uploaded(), refused() or failed(). This may be
    /// deleted then.
    void upload(const QString &path);

Q_SIGNALS:
    /// @p address is where the service finds the recording.
    void uploaded(const QString &address);

    /// @p done bytes of @p total are on their way.
    void sent(qint64 done, qint64 total);

    /// The service gave no credentials.
    void refused();

    void failed(const Reason &reason);

private:
    void onCredentials(OSS_SIGN_INFO *credentials);
    void put(const OSS_SIGN_INFO &credentials, const QByteArray &bytes);
    void onReply(const QByteArray &reply);
    void onError(const QByteArray &text);
    void onSent(qint64 done, qint64 total);

    ServiceLease *m_service;
    HttpClient *m_client; ///< A child.
    QString m_path;
    QString m_address;
};
