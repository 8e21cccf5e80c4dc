#pragma once

#include "network/vonetwork_export.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

/// Short-lived credentials for uploading files to the service's object storage. A text that the
/// service leaves out is empty. How long they are valid the service does not say.
struct OSS_SIGN_INFO
{
    QString AccessKeyId;     ///< Identifier of the temporary access key.
    QString AccessKeySecret; ///< Secret of the temporary access key.
    QString endpoint;        ///< Address of the storage.
    QString bucketName;      ///< Name of the storage bucket.
    QString dir;             ///< Folder (key prefix) under which uploads are to be placed.
    QString SecurityToken;   ///< Token that goes with the temporary key.
    QString bucketRegion;    ///< Region of the bucket.
};

/// Outcome of a short recognition.
enum SHORT_STT_STATUS : int {
    SHORT_STT_SUCCESS = 0, ///< The recording was recognised; the text may be empty.
    SHORT_STT_FAILED = 1,  ///< The request or the recognition failed.
};

/// Outcome of each step of a long recognition.
enum STT_STATUS : int {
    STT_SUCCESS = 0,    ///< The task was created, or has ended with its text.
    STT_PROCESSING = 1, ///< The task is queued or running; from signalGetSTTResult() only.
    STT_FAILED = 2,     ///< The request or the task failed.
};

/// Settings of a synthesis. The host owns the record; operations read it before they return. Every
/// value is sent as it is. Which values are taken, and in which units, is the service's to say.
struct TTSParams
{
    QString text;           ///< The text to speak.
    QString format;         ///< Audio format, by the service's name for it.
    qint32 sample_rate = 0; ///< Samples per second of the audio.
    QString voice;          ///< Identifier of the voice: DubInfo::voiceParam.
    qint32 volume = 0;      ///< Loudness, on the service's scale.
    qint32 speech_rate = 0; ///< Speed of the speech, on the service's scale.
    qint32 pitch_rate = 0;  ///< Pitch of the voice, on the service's scale.
    QString pageFeature;    ///< A label of the host's choice.
};

/// Outcome of a short synthesis.
enum TTS_STATUS : int {
    TTS_SUCCESS = 0, ///< The text was spoken; the audio comes with it.
    TTS_FAILED = 1,  ///< The request or the synthesis failed.
};

/// Outcome of each step of a long synthesis.
enum LONG_TTS_STATUS : int {
    LONG_TTS_SUCCESS = 0,    ///< The task was created, or has ended with its audio's address.
    LONG_TTS_PROCESSING = 1, ///< The task is queued or running; from signalGetLongTTSResult() only.
    LONG_TTS_FAILED = 2,     ///< The request or the task failed.
};

/// The kind of a voice. The service's own word for it is DubInfo::category.
enum DubType : int {
    DUB_TYPE_UNSET = 0,            ///< In a record that the host makes; the library never sets it.
    DUB_TYPE_ULTRA_HD = 1,         ///< Of especially high quality.
    DUB_TYPE_LITERATURE = 2,       ///< For reading stories and books.
    DUB_TYPE_GENERAL = 3,          ///< For any purpose, and for every category that is not known.
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
    QString voiceParam;               ///< Identifier of the voice, for TTSParams::voice.
    QString type;                     ///< Kind of the speaker, in the service's words.
    DubType dubType = DUB_TYPE_UNSET; ///< What the category means.
    QString category;                 ///< Kind of the voice, in the service's words.
    QString avatar;                   ///< Name of a picture file that the host brings:
                                      ///< women_01.png, women_02.png, avatar_girl.png, man_01.png,
                                      ///< man_02.png or avatar_children.png. The first also where
                                      ///< the service has a picture that is none of these.
    QString scene;                    ///< What the voice is meant for, in the service's words.
    QString audition_url;             ///< Address of a sample recording.
    bool supportTTS = false;          ///< Speaks short texts, for TTS().
    bool supportLongTTS = false;      ///< Speaks long texts, for LongTTSTask().
};

/// A track of background music. A text that the service leaves out is empty.
struct BgmInfo
{
    QString name; ///< To be shown to the user.
    QString url;  ///< Address of the audio file.
};

/// A code that the user scans with a phone to sign in.
struct LoginQrCode
{
    QString qrImagePath;   ///< Full path of the PNG file with its picture. There is one such file:
                           ///< the next code overwrites it.
    QDateTime expire_time; ///< When the code ends, to the second, in local time; the beginning of
                           ///< 1970 (UTC) where the service does not say.
    QString business_code; ///< Identifies this attempt to sign in, for GetLoginQrCodeStatus().
};

/// A user who has signed in. A text that the service leaves out is empty. A number that it leaves
/// out is 0, one with a fraction loses that, and beyond 2^53 one is as exact as a double.
struct UserInfo
{
    qint64 user_id = -1;           ///< The user's number with the service.
    QString nickname;              ///< To be shown to the user.
    QString header_url;            ///< Address of the user's picture.
    qint64 token = -1;             ///< Access token, for the speech operations.
    qint64 refresh_token = -1;     ///< For RefreshToken().
    QDateTime token_expire_time;   ///< When the access token ends, to the second. The service's
                                   ///< text, "yyyy-MM-dd hh:mm:ss", is taken for local time; any
                                   ///< other text makes it invalid.
    QDateTime refresh_expire_time; ///< When the refresh token ends, as above.
};

/// What the service says of newer versions of the host. The library compares no versions. A text
/// that the service leaves out is empty, a number 0.
struct UpdateInfo
{
    qint32 upgradeStatus = 0;    ///< What to do; the values are between the service and the host.
    QString currentVersion;      ///< The version of this library, VoNetwork::GetAppVersion().
    QString version_code;        ///< The version that the service offers.
    QString external_update_log; ///< The changes in that version, one a line: two blanks, the
                                 ///< change, a line feed.
    QString url;                 ///< Address at which that version is to be had.
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

/// The service as a host sees it. VoNetwork::CreateVoNetworkIntf() makes such an object.
///
/// Threads: every operation is called on the thread that created the object, which must run a Qt
/// event loop. Signals are emitted on that thread.
///
/// Answers: an asynchronous operation returns at once and answers exactly once by its signal;
/// GetLoginQrCode() may answer twice or not at all. Why an operation failed is in the debug log
/// only. No operation has a time-out: a service that never answers leaves it pending.
///
/// Synchronous operations: GetBgmList(), GetDubList(), GetUpdateInfo() and DownloadLongTTSRet()
/// wait in a nested event loop, in which other signals are delivered. An application that quits
/// ends the wait with a failure. ReleaseVoNetwork() does too, but a download goes on to its end.
///
/// Only one of GetBgmList(), GetDubList() and GetUpdateInfo() may wait at a time. One that a
/// handler calls during the wait of another takes the wait over, and the outer call never returns.
/// A request whose wait a quitting application has ended stays under way; its reply would end the
/// next wait early.
///
/// Arguments: a token is a number that sign-in gives; it is sent in decimal and not kept. Texts are
/// sent as they are.
///
/// Records: those that a signal or a list carries belong to the receiver, who deletes them. An
/// UpdateInfo stays the library's. A LoginQrCode may be deleted only while no GetLoginQrCode() is
/// pending.
class VONETWORK_EXPORT VoNetworkIntf : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(VoNetworkIntf)

public:
    /// Registers the records and enumerations with the meta-type system, so that string-based and
    /// queued connections carry them.
    VoNetworkIntf();
    ~VoNetworkIntf() override;

    /// Asks for upload credentials; answered by signalGetOssSign().
    virtual void GetOssSign() = 0;

    /// Recognises a short recording at once; answered by signalShortSTT(). @p fileLink is the
    /// address at which the service finds the recording, @p token the access token, and
    /// @p pageFeature a label of the host's choice.
    virtual void ShortSTT(QString fileLink, qint64 token, QString pageFeature) = 0;

    /// Starts the recognition of a long recording; answered by signalCreateSTTTask(). The arguments
    /// are those of ShortSTT().
    virtual void CreateSTTTask(QString fileLink, qint64 token, QString pageFeature) = 0;

    /// Asks how the recognition @p taskId, from signalCreateSTTTask(), is getting on; answered by
    /// signalGetSTTResult(). The host calls it again, at its own pace, while that reports
    /// STT_PROCESSING.
    virtual void GetSTTTaskResult(QString taskId, qint64 token) = 0;

    /// The tracks of background music, in the service's order; empty on any failure. Waits in a
    /// nested event loop.
    virtual QList<BgmInfo *> GetBgmList() = 0;

    /// Speaks a short text at once; answered by signalTTSRet(). @p params must not be null. With
    /// @p anonymous no token is sent, whatever @p token is.
    virtual void TTS(TTSParams *params, bool anonymous, qint64 token) = 0;

    /// Starts the synthesis of a long text; answered by signalLongTTSTask(). @p params must not be
    /// null.
    virtual void LongTTSTask(TTSParams *params, qint64 token) = 0;

    /// Asks how the synthesis @p taskId, from signalLongTTSTask(), is getting on; answered by
    /// signalGetLongTTSResult(). The host calls it again, at its own pace, while that reports
    /// LONG_TTS_PROCESSING.
    virtual void LongTTSStatus(QString taskId, qint64 token) = 0;

    /// Fetches the audio at @p fileUrl, from signalGetLongTTSResult(), into the file @p saveDir: a
    /// full path in spite of the name, whose folder must exist and whose file is replaced. No
    /// redirect is followed. True when the file was written, also when the disk took only a part of
    /// it; false, with the file left alone, when the audio was not fetched or the file cannot be
    /// opened. Waits in a nested event loop.
    virtual bool DownloadLongTTSRet(QString fileUrl, QString saveDir) = 0;

    /// The voices, in the service's order; empty on any failure. Waits in a nested event loop.
    virtual QList<DubInfo *> GetDubList() = 0;

    /// Asks for a newer version of the host; null on any failure. The record is the library's: the
    /// next call deletes it first of all, and the end of this object does not. Waits in a nested
    /// event loop.
    virtual UpdateInfo *GetUpdateInfo() = 0;

    /// Asks for a code to sign in with and fetches its picture into the file
    /// "VoTTS/login_qr_code.png" of QDir::tempPath(); answered by signalGetLoginQrCodeEnd(). The
    /// host has to make the folder "VoTTS": without it there is no answer. A host asks for one code
    /// at a time.
    virtual void GetLoginQrCode() = 0;

    /// Asks whether the user has scanned and confirmed the code @p businessCode, from
    /// LoginQrCode::business_code; answered by signalGetLoginQrCodeStatusEnd(). The host calls it
    /// again, at its own pace, until the user has signed in or it gives up.
    virtual void GetLoginQrCodeStatus(QString businessCode) = 0;

    /// Asks for a sign-in code to be sent by SMS to the number @p phone; answered by
    /// signalSendSmsEnd().
    virtual void SendSmsVerifyCode(QString phone) = 0;

    /// Signs in with the number @p phone and the code that the user received there; answered by
    /// signalSmsLoginEnd().
    virtual void SmsVerifyCodeLogin(QString phone, QString verifyCode) = 0;

    /// Asks for a new access token, by UserInfo::refresh_token; answered by
    /// signalRefreshTokenEnd().
    virtual void RefreshToken(qint64 refreshToken) = 0;

Q_SIGNALS:
    /// Answers GetOssSign(); null when it failed.
    void signalGetOssSign(OSS_SIGN_INFO *pSignInfo);

    /// Answers ShortSTT() with the recognised text; empty when it failed.
    void signalShortSTT(SHORT_STT_STATUS status, QString text);

    /// Answers CreateSTTTask() with an identifier for GetSTTTaskResult(); empty when it failed.
    void signalCreateSTTTask(STT_STATUS status, QString taskid);

    /// Answers GetSTTTaskResult() with the identifiers of the task and of the service's request,
    /// and, with STT_SUCCESS only, the recognised text. A task that failed on the service has its
    /// identifiers too; a request that failed has none.
    void signalGetSTTResult(STT_STATUS, QString taskid, QString request_id, QString text);

    /// Answers TTS() with the audio in base64, unchanged from the service; empty when it failed.
    void signalTTSRet(TTS_STATUS status, QString audioBase64);

    /// Answers LongTTSTask() with an identifier for LongTTSStatus(); empty when it failed.
    void signalLongTTSTask(LONG_TTS_STATUS status, QString taskId);

    /// Answers LongTTSStatus() with the identifiers of the task and of the service's request, and,
    /// with LONG_TTS_SUCCESS only, the audio's address, for DownloadLongTTSRet(). A task that
    /// failed on the service has its identifiers too; a request that failed has none.
    void signalGetLongTTSResult(LONG_TTS_STATUS, QString taskid, QString request_id,
                                QString audioUrl);

    /// Answers GetLoginQrCode() once the picture is written; null when it failed. When the code
    /// came and its picture did not, null is followed by the record, and the file holds what came
    /// instead, normally nothing. When the file cannot be opened, no record follows. Of two codes
    /// that are asked for at once, both may bring the newest record: delete none before both are
    /// answered.
    void signalGetLoginQrCodeEnd(LoginQrCode *pLoginQrCodeInfo);

    /// Answers GetLoginQrCodeStatus(); null when the request failed and while the user has not
    /// signed in.
    void signalGetLoginQrCodeStatusEnd(UserInfo *pUserInfo);

    /// Answers SendSmsVerifyCode(): the attempt has ended, whether or not a code was sent.
    void signalSendSmsEnd();

    /// Answers SmsVerifyCodeLogin(); null when it failed.
    void signalSmsLoginEnd(UserInfo *pUInfo);

    /// Answers RefreshToken() with the access token and, as in UserInfo, the time when it ends.
    /// @p newToken is -1 when it failed; @p expireTime says nothing then.
    void signalRefreshTokenEnd(qlonglong newToken, QDateTime expireTime);
};
