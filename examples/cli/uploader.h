#pragma once

#include "http/httpclient.h"

#include <QByteArray>
#include <QObject>
#include <QString>

class Progress;
class VoNetworkIntf;
struct OSS_SIGN_INFO;

/// Uploads a recording to the service's object storage, where the service can read it.
class Uploader : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Uploader)

public:
    Uploader(VoNetworkIntf *service, Progress *progress, QObject *parent = nullptr);

    /// Uploads the file @p path; answered by uploaded() or failed(). One file at a time.
    void upload(const QString &path);

Q_SIGNALS:
    /// @p address is where the service finds the recording.
    void uploaded(const QString &address);

    /// @p problem is a line for the user.
    void failed(const QString &problem);

private:
    void onCredentials(OSS_SIGN_INFO *credentials);
    void put(const OSS_SIGN_INFO &credentials, const QByteArray &bytes);
    void onReply(const QByteArray &reply);
    void onError(const QByteArray &text);
    void showSent(qint64 sent, qint64 total);

    VoNetworkIntf *m_service;
    Progress *m_progress;
    HttpClient m_client;
    QString m_path;
    QString m_address;
};
