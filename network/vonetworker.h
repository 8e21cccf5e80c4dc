#pragma once

#include "network/vonetworkintf.h"

#include <QByteArray>
#include <QVariantMap>

class HttpClient;
class QEventLoop;
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
    QList<BgmInfo *> GetBgmList() override;
    void TTS(TTSParams *params, bool anonymous, qint64 token) override;
    void LongTTSTask(TTSParams *params, qint64 token) override;
    void LongTTSStatus(QString taskId, qint64 token) override;
    bool DownloadLongTTSRet(QString fileUrl, QString saveDir) override;
    QList<DubInfo *> GetDubList() override;
    UpdateInfo *GetUpdateInfo() override;
    void GetLoginQrCode() override;
    void GetLoginQrCodeStatus(QString businessCode) override;
    void SendSmsVerifyCode(QString phone) override;
    void SmsVerifyCodeLogin(QString phone, QString verifyCode) override;
    void RefreshToken(qint64 refreshToken) override;

protected:
    /// What the console command @p command prints, on one line and without its own last word (the
    /// title above the value); empty when it cannot be run. Waits for it without a time-out.
    QString runCommand(QString command);

    /// The kind of voice that the service calls @p category, to the letter.
    DubType ConvertServerToClientDubType(QString category);

    /// The name of the picture file that stands for the stock picture at @p url, compared to the
    /// letter; "women_01.png" for any other.
    QString ConvertAvtUrlToClient(QString url);

    /// Fetches the picture at @p url into the file @p savePath, whose folder must exist; returns
    /// the path, or an empty text when the file cannot be opened. A picture that cannot be fetched
    /// leaves what came instead, normally nothing, and emits signalGetLoginQrCodeEnd() with null.
    /// Waits in a nested event loop, without a time-out.
    QString DownloadAvt(QString url, QString savePath);

    /// Fetches the picture of the newest code, which must be there, into the file @p savePath and
    /// emits signalGetLoginQrCodeEnd(): null if the picture cannot be fetched, then the newest
    /// record if the file can be opened. Waits in a nested event loop, without a time-out.
    void DownloadLoginQrCode(QString qrUrl, QString savePath);

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
    void slotGetBgmListSuc(QByteArray jsonStr);
    void slotGetBgmListFail(QByteArray failInfo);
    void slotTTSSuc(QByteArray jsonStr);
    void slotTTSFail(QByteArray failInfo);
    void slotLongTTSTaskSuc(QByteArray jsonStr);
    void slotLongTTSTaskFail(QByteArray failInfo);
    void slotLongTTSTaskStatusSuc(QByteArray jsonStr);
    void slotLongTTSTaskStatusFail(QByteArray failInfo);
    void slotGetDubListSuc(QByteArray jsonStr);
    void slotGetDubListFail(QByteArray failInfo);
    void slotGetUpdateInfoSuc(QByteArray jsonStr);
    void slotGetUpdateInfoFail(QByteArray failInfo);
    void slotGetLoginQrCodeSuc(QByteArray jsonStr);
    void slotGetLoginQrCodeFail(QByteArray failInfo);
    void slotGetLoginQrCodeStatusSuc(QByteArray jsonStr);
    void slotGetLoginQrCodeStatusFail(QByteArray failInfo);
    void slotSendSmsVerifyCodeSuc(QByteArray jsonStr);
    void slotSendSmsVerifyCodeFail(QByteArray failInfo);
    void slotSmsLoginSuc(QByteArray jsonStr);
    void slotSmsLoginFail(QByteArray failInfo);
    void slotRefreshTokenSuc(QByteArray jsonStr);
    void slotRefreshTokenFail(QByteArray failInfo);

private:
    QVariantMap commonHeaders() const;
    QVariantMap authorizedHeaders(qint64 token) const;
    void issue(const ServiceOperation &operation, const QVariantMap &headers,
               const QJsonObject &body, const QString &query = QString());
    bool waitForAnswer();
    void endWait();
    DubInfo *dubInfoFrom(const QJsonObject &voice);

    QString deviceId;
    HttpClient *client; ///< Owned; outlives this object until the event loop is next reached.
    QEventLoop *blockingLoop = nullptr; ///< Of the synchronous operation that waits.
    QList<BgmInfo *> bgmList;           ///< The caller's, as all records but the last.
    LoginQrCode *loginQrCode = nullptr; ///< The newest.
    QList<DubInfo *> dubList;
    UpdateInfo *updateInfo = nullptr; ///< Deleted by the next call only.
};
