#pragma once

#include "network/vonetwork_export.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

/// Short-lived credentials for uploading files to the service's object storage. A text that the
/// service leaves out is empty. The service alone knows for how long they are valid.
struct OSS_SIGN_INFO
{
    QString AccessKeyId;     ///< Identifier of the temporary access key.
    QString AccessKeySecret; ///< Secret of the temporary access key.
    QString endpoint;        ///< Address of the storage.
    QString bucketName;      ///< Name of the storage bucket.
    QString dir;             ///< Key prefix under which uploads are to be placed.
    QString SecurityToken;   ///< Token that goes with the temporary key.
    QString bucketRegion;    ///< Region of the bucket.
};

/// Outcome of a short recognition.
enum SHORT_STT_STATUS : int {
    SHORT_STT_SUCCESS = 0, ///< The text is there; it may be empty.
    SHORT_STT_FAILED = 1,  ///< The request or the recognition failed.
};

/// Outcome of a long recognition's steps.
enum STT_STATUS : int {
    STT_SUCCESS = 0,    ///< The task was created, or has ended with its text.
    STT_PROCESSING = 1, ///< The task is queued or running.
    STT_FAILED = 2,     ///< The request or the task failed.
};

/// Settings of a synthesis. The host owns the record; operations read it before they return. The
/// values are sent unchanged and checked by the service alone, whose ranges and units they have.
struct TTSParams
{
    QString text;           ///< The text to speak.
    QString format;         ///< Audio format, by the service's name for it.
    qint32 sample_rate = 0; ///< Samples of a second.
    QString voice;          ///< The voice's identifier, DubInfo::voiceParam.
    qint32 volume = 0;      ///< On the service's scale, as the two below.
    qint32 speech_rate = 0;
    qint32 pitch_rate = 0;
    QString pageFeature; ///< A label of the host's choice, which the service gets as it is.
};

/// Outcome of a short synthesis.
enum TTS_STATUS : int {
    TTS_SUCCESS = 0, ///< The audio is there.
    TTS_FAILED = 1,  ///< The request or the synthesis failed.
};

/// Outcome of a long synthesis' steps.
enum LONG_TTS_STATUS : int {
    LONG_TTS_SUCCESS = 0,    ///< The task was created, or has ended with its audio's address.
    LONG_TTS_PROCESSING = 1, ///< The task is queued or running.
    LONG_TTS_FAILED = 2,     ///< The request or the task failed.
};

/// What kind of voice it is; the service's own word for it is DubInfo::category.
enum DubType : int {
    DUB_TYPE_UNSET = 0,            ///< A record that was not filled.
    DUB_TYPE_ULTRA_HD = 1,         ///< Of especially high quality.
    DUB_TYPE_LITERATURE = 2,       ///< For reading stories and books.
    DUB_TYPE_GENERAL = 3,          ///< For any purpose; also every category that is not known.
    DUB_TYPE_FOREIGN_LANGUAGE = 4, ///< English, American English, or several languages.
    DUB_TYPE_DIALECT = 5,          ///< Speaks a dialect.
    DUB_TYPE_CUSTOMER_SERVICE = 6, ///< For answering customers.
    DUB_TYPE_LIVE_STREAMING = 7,   ///< For live broadcasts.
    DUB_TYPE_CHILD = 8,            ///< A child's voice.
    DUB_TYPE_EMOTIONAL = 9,        ///< Knows several emotions.
};

/// A voice that texts can be spoken with. A text that the service leaves out is empty.
struct DubInfo
{
    QString name;                     ///< To be shown to the user.
    QString voiceParam;               ///< The voice's identifier, for TTSParams::voice.
    QString type;                     ///< The speaker's kind, in the service's words.
    DubType dubType = DUB_TYPE_UNSET; ///< What the category means.
    QString category;                 ///< The kind of voice, in the service's words.
    QString avatar;                   ///< Name of one of six picture files that the host brings.
    QString scene;                    ///< What the voice is meant for, in the service's words.
    QString audition_url;             ///< Address of a sample recording.
    bool supportTTS = false;          ///< Speaks short texts, for TTS().
    bool supportLongTTS = false;      ///< Speaks long texts, for LongTTSTask().
};

/// A track of background music.
struct BgmInfo
{
    QString name; ///< To be shown to the user.
    QString url;  ///< Address of the audio file.
};

/// A code that the user scans with a phone to sign in.
struct LoginQrCode
{
    QString qrImagePath;   ///< Full path of the picture's PNG file, which the next code overwrites.
    QDateTime expire_time; ///< When the code ends; local time, in whole seconds.
    QString business_code; ///< Identifies this attempt, for GetLoginQrCodeStatus().
};

/// A user who has signed in. A number that the service leaves out is 0, a text is empty.
struct UserInfo
{
    qint64 user_id = -1;
    QString nickname;              ///< To be shown to the user.
    QString header_url;            ///< Address of the user's picture.
    qint64 token = -1;             ///< The access token, for the speech operations.
    qint64 refresh_token = -1;     ///< For RefreshToken().
    QDateTime token_expire_time;   ///< When the access token ends; the service's text taken for
                                   ///< local time, invalid when it is no "yyyy-MM-dd hh:mm:ss".
    QDateTime refresh_expire_time; ///< When the refresh token ends; as above.
};

/// What the service says of newer versions of the host. The library compares no versions.
struct UpdateInfo
{
    qint32 upgradeStatus = 0;    ///< What to do, by what the service and the host have agreed.
    QString currentVersion;      ///< This library's version.
    QString version_code;        ///< The version that the service offers.
    QString external_update_log; ///< Its changes: each indented by two blanks and ended by a line
                                 ///< feed.
    QString url;                 ///< Where that version is to be had.
};

Q_DECLARE_METATYPE(OSS_SIGN_INFO *)
Q_DECLARE_METATYPE(SHORT_STT_STATUS)
Q_DECLARE_METATYPE(STT_STATUS)
Q_DECLARE_METATYPE(TTSParams *)
Q_DECLARE_METATYPE(TTS_STATUS)
Q_DECLARE_METATYPE(LONG_TTS_STATUS)
Q_DECLARE_METATYPE(DubType)
Q_DECLARE_METATYPE(DubInfo *)
Q_DECLARE_METATYPE(BgmInfo *)
Q_DECLARE_METATYPE(LoginQrCode *)
Q_DECLARE_METATYPE(UserInfo *)
Q_DECLARE_METATYPE(UpdateInfo *)

/// The service as a host sees it; VoNetwork::CreateVoNetworkIntf() makes one.
///
/// Every operation is called on the thread that created the object, which must run a Qt event
/// loop; signals are emitted there. An asynchronous operation returns at once and answers exactly
/// once by its signal, GetLoginQrCode() excepted. Why an operation failed is in the debug log only.
/// No operation has a time-out: a service that never answers leaves it pending.
///
/// A synchronous operation (GetBgmList(), GetDubList(), GetUpdateInfo(), DownloadLongTTSRet())
/// waits in a nested event loop: other signals are delivered meanwhile, and an application that
/// quits ends the wait with a failure. So does an object that is given back, but for a download,
/// which goes on to its end.
///
/// Of the first three only one may wait at a time. Called from a handler that runs during the wait
/// of another, it would take over that wait, which no reply would end any more. A request whose
/// wait a quitting application has ended stays under way: its reply would end the next wait.
///
/// Tokens are the numbers that sign-in gives; they are sent in decimal and never kept. Records
/// that a signal or a list carries belong to the receiver, which deletes them. UpdateInfo stays the
/// library's, and a LoginQrCode may be deleted only while no GetLoginQrCode() is pending.
class VONETWORK_EXPORT VoNetworkIntf : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(VoNetworkIntf)

public:
    VoNetworkIntf();
    ~VoNetworkIntf() override;

    /// Asks for upload credentials; answered by signalGetOssSign().
    virtual void GetOssSign() = 0;

    /// Recognises a short recording at once; answered by signalShortSTT(). @p fileLink is the
    /// recording's address, handed to the service as it is; @p pageFeature is a label of the
    /// host's choice.
    virtual void ShortSTT(QString fileLink, qint64 token, QString pageFeature) = 0;

    /// Starts the recognition of a long recording; answered by signalCreateSTTTask().
    virtual void CreateSTTTask(QString fileLink, qint64 token, QString pageFeature) = 0;

    /// Asks how the recognition @p taskId is getting on; answered by signalGetSTTResult(). Called
    /// again while that reports STT_PROCESSING, at the host's own pace.
    virtual void GetSTTTaskResult(QString taskId, qint64 token) = 0;

    /// The tracks of background music, in the service's order; empty on any failure. Waits in a
    /// nested event loop.
    virtual QList<BgmInfo *> GetBgmList() = 0;

    /// Speaks a short text at once; answered by signalTTSRet(). @p params must not be null.
    /// With @p anonymous no token is sent.
    virtual void TTS(TTSParams *params, bool anonymous, qint64 token) = 0;

    /// Starts the synthesis of a long text; answered by signalLongTTSTask(). @p params must not be
    /// null.
    virtual void LongTTSTask(TTSParams *params, qint64 token) = 0;

    /// Asks how the synthesis @p taskId is getting on; answered by signalGetLongTTSResult().
    /// Called again while that reports LONG_TTS_PROCESSING, at the host's own pace.
    virtual void LongTTSStatus(QString taskId, qint64 token) = 0;

    /// Fetches the audio of a long synthesis into the file @p saveDir, a full path, which is
    /// replaced; its folder must exist. Returns whether the file was written. Waits in a nested
    /// event loop, without a time-out; other signals are delivered meanwhile.
    virtual bool DownloadLongTTSRet(QString fileUrl, QString saveDir) = 0;

    /// The voices, in the service's order; empty on any failure. Waits in a nested event loop.
    virtual QList<DubInfo *> GetDubList() = 0;

    /// Asks for a newer version of the host; null on any failure. The record is the library's and
    /// valid until the next call; it outlives this object. Waits in a nested event loop.
    virtual UpdateInfo *GetUpdateInfo() = 0;

    /// Asks for a code to sign in with and fetches its picture into the file
    /// "VoTTS/login_qr_code.png" of the temporary folder; answered by signalGetLoginQrCodeEnd().
    /// The host has to make the folder "VoTTS": without it there is no answer. One code at a time.
    virtual void GetLoginQrCode() = 0;

    /// Asks whether the user has scanned and confirmed the code @p businessCode, a record's
    /// business_code; answered by signalGetLoginQrCodeStatusEnd(). Called again, at the host's own
    /// pace, until the user has signed in or the host gives up.
    virtual void GetLoginQrCodeStatus(QString businessCode) = 0;

    /// Asks for a sign-in code to be sent to @p phone; answered by signalSendSmsEnd().
    virtual void SendSmsVerifyCode(QString phone) = 0;

    /// Signs in with the code that the user received; answered by signalSmsLoginEnd().
    virtual void SmsVerifyCodeLogin(QString phone, QString verifyCode) = 0;

    /// Asks for a new access token; answered by signalRefreshTokenEnd().
    virtual void RefreshToken(qint64 refreshToken) = 0;

Q_SIGNALS:
    /// Answers GetOssSign(); null when it failed.
    void signalGetOssSign(OSS_SIGN_INFO *pSignInfo);

    /// Answers ShortSTT(); the text is empty when it failed.
    void signalShortSTT(SHORT_STT_STATUS status, QString text);

    /// Answers CreateSTTTask(); the identifier is empty when it failed.
    void signalCreateSTTTask(STT_STATUS status, QString taskid);

    /// Answers GetSTTTaskResult(); the text is there with STT_SUCCESS only. A task that failed on
    /// the service still brings both identifiers, a request that failed brings none.
    void signalGetSTTResult(STT_STATUS, QString taskid, QString request_id, QString text);

    /// Answers TTS() with the audio in base64, as the service sent it; empty when it failed.
    void signalTTSRet(TTS_STATUS status, QString audioBase64);

    /// Answers LongTTSTask(); the identifier is empty when it failed.
    void signalLongTTSTask(LONG_TTS_STATUS status, QString taskId);

    /// Answers LongTTSStatus(); the address is there with LONG_TTS_SUCCESS only. A task that
    /// failed on the service still brings both identifiers, a request that failed brings none.
    void signalGetLongTTSResult(LONG_TTS_STATUS, QString taskid, QString request_id,
                                QString audioUrl);

    /// Answers GetLoginQrCode() once the picture is written; null when it failed. When only the
    /// picture could not be fetched, null is followed by the record, whose picture is what came
    /// instead, normally nothing. Two codes that are asked for at once may both bring the newest
    /// record: delete none before both are answered.
    void signalGetLoginQrCodeEnd(LoginQrCode *pLoginQrCodeInfo);

    /// Answers GetLoginQrCodeStatus(); null when the request failed and while the user has not
    /// signed in.
    void signalGetLoginQrCodeStatusEnd(UserInfo *pUserInfo);

    /// Answers SendSmsVerifyCode(): the attempt has ended, whether or not a code was sent.
    void signalSendSmsEnd();

    /// Answers SmsVerifyCodeLogin(); null when it failed.
    void signalSmsLoginEnd(UserInfo *pUInfo);

    /// Answers RefreshToken(); @p newToken is -1 when it failed, and @p expireTime says nothing
    /// then.
    void signalRefreshTokenEnd(qlonglong newToken, QDateTime expireTime);
};
