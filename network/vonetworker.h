#pragma once

#include "network/vonetworkintf.h"

#include <QByteArray>
#include <QJsonValue>
#include <QVariantMap>

#include <optional>

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
    /// What the console command @p command prints, as one line. Every occurrence of the command's
    /// own last word, which such commands print as a title above the value, is left out. Empty when
    /// the command cannot be run. Waits for its end without a time-out.
    QString runCommand(QString command);

    /// The kind of voice that the service calls @p category, which has to match to the letter;
    /// DUB_TYPE_GENERAL for any other text.
    DubType ConvertServerToClientDubType(QString category);

    /// The name of the picture file that stands for the service's stock picture at @p url, which
    /// has to match to the letter; "women_01.png" for any other address.
    QString ConvertAvtUrlToClient(QString url);

    /// Fetches the picture at @p url into the file @p savePath, whose folder must exist. Returns
    /// @p savePath, or an empty text when the file cannot be opened. When the picture cannot be
    /// fetched, the file holds what came instead, normally nothing, and signalGetLoginQrCodeEnd()
    /// is emitted with null. Waits in a nested event loop, without a time-out.
    QString DownloadAvt(QString url, QString savePath);

    /// Fetches the picture at @p qrUrl of the newest code, of which there must be one, into the
    /// file @p savePath, whose folder must exist. Emits signalGetLoginQrCodeEnd(): with null when
    /// the picture cannot be fetched, and then, fetched or not, with the newest record when the
    /// file can be opened. Waits in a nested event loop, without a time-out.
    void DownloadLoginQrCode(QString qrUrl, QString savePath);

protected Q_SLOTS:
    ///@{
    /// Called by the toolkit: jsonStr is the body of a reply, failInfo the text of a network error.
    /// Requests are bound to these slots by their names.
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
    ///@}

private:
    QVariantMap commonHeaders() const;
    QVariantMap authorizedHeaders(qint64 token) const;
    void issue(const ServiceOperation &operation, const QVariantMap &headers,
               const QJsonObject &body, const QString &query = QString());
    std::optional<QJsonValue> dataOf(QByteArray *reply, const ServiceOperation &operation);
    bool waitForAnswer();
    void endWait();
    DubInfo *dubInfoFrom(const QJsonObject &voice);

    QString deviceId;
    HttpClient *client; ///< Owned; outlives this object until the event loop is next reached.
    QEventLoop *blockingLoop = nullptr; ///< Of the synchronous operation that waits; else null.
    QList<BgmInfo *> bgmList;           ///< Of the last reply; the records are the caller's.
    LoginQrCode *loginQrCode = nullptr; ///< The newest; the receiver's.
    QList<DubInfo *> dubList;           ///< Of the last reply; the records are the caller's.
    UpdateInfo *updateInfo = nullptr;   ///< Owned; only the next GetUpdateInfo() deletes it.
};
