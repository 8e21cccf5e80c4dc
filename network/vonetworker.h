#pragma once

#include "network/vonetworkintf.h"

#include <QByteArray>
#include <QVariantMap>

class HttpClient;
class QJsonObject;
struct ServiceOperation;

/// The one implementation of VoNetworkIntf: each operation becomes one HTTPS request, each reply a
/// signal or a return value. Hosts get it from VoNetwork::CreateVoNetworkIntf().
class VONETWORK_EXPORT VoNetworker : public VoNetworkIntf
{
    Q_OBJECT
    Q_DISABLE_COPY(VoNetworker)

public:
    /// Blocks until the command that prints the device identifier has ended.
    VoNetworker();
    ~VoNetworker() override;

    void GetOssSign() override;
    void ShortSTT(QString fileLink, qint64 token, QString pageFeature) override;
    void CreateSTTTask(QString fileLink, qint64 token, QString pageFeature) override;
    void GetSTTTaskResult(QString taskId, qint64 token) override;
    void TTS(TTSParams *params, bool anonymous, qint64 token) override;
    void LongTTSTask(TTSParams *params, qint64 token) override;
    void LongTTSStatus(QString taskId, qint64 token) override;
    bool DownloadLongTTSRet(QString fileUrl, QString saveDir) override;

protected:
    /// What the console command @p command prints, on one line and without its own last word (the
    /// title above the value); empty when it cannot be run. Waits for it without a time-out.
    QString runCommand(QString command);

protected Q_SLOTS:
    // The answers to the operations: a reply's body, or the text of a network failure.
    void slotGetOssSignSuc(QByteArray jsonStr);
    void slotGetOssSignFail(QByteArray failInfo);
    void slotShortSTTSuc(QByteArray jsonStr);
    void slotShortSTTFail(QByteArray failInfo);
    void slotCreateSTTTaskSuc(QByteArray jsonStr);
    void slotCreateSTTTaskFail(QByteArray failInfo);
    void slotGetSTTRetSuc(QByteArray jsonStr);
    void slotGetSTTRetFail(QByteArray failInfo);
    void slotTTSSuc(QByteArray jsonStr);
    void slotTTSFail(QByteArray failInfo);
    void slotLongTTSTaskSuc(QByteArray jsonStr);
    void slotLongTTSTaskFail(QByteArray failInfo);
    void slotLongTTSTaskStatusSuc(QByteArray jsonStr);
    void slotLongTTSTaskStatusFail(QByteArray failInfo);

private:
    QVariantMap commonHeaders() const;
    QVariantMap authorizedHeaders(qint64 token) const;
    void issue(const ServiceOperation &operation, const QVariantMap &headers,
               const QJsonObject &body);

    QString deviceId;
    HttpClient *client; ///< Owned; outlives this object until the event loop is next reached.
};
