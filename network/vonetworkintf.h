#pragma once

#include "network/vonetwork_export.h"

#include <QMetaType>
#include <QObject>
#include <QString>

/// Short-lived credentials for uploading a file to the service's object storage.
struct OSS_SIGN_INFO
{
    QString AccessKeyId;     ///< Identifier of the temporary access key.
    QString AccessKeySecret; ///< Secret of the temporary access key.
    QString endpoint;        ///< Storage endpoint address.
    QString bucketName;      ///< Name of the storage bucket.
    QString dir;             ///< Key prefix under which uploads are to be placed.
    QString SecurityToken;   ///< Token that goes with the temporary key.
    QString bucketRegion;    ///< Region of the bucket.
};

/// Outcome of a short recognition.
enum SHORT_STT_STATUS : int {
    SHORT_STT_SUCCESS = 0,
    SHORT_STT_FAILED = 1,
};

/// Outcome of a long recognition's steps.
enum STT_STATUS : int {
    STT_SUCCESS = 0,    ///< Task created, or finished with its text.
    STT_PROCESSING = 1, ///< Task queued or running.
    STT_FAILED = 2,
};

/// Settings of a synthesis. The host owns the record; operations read it before they return. The
/// values are sent unchanged, their ranges and units are the service's.
struct TTSParams
{
    QString text;           ///< The text to speak.
    QString format;         ///< Audio format.
    qint32 sample_rate = 0; ///< Hz.
    QString voice;          ///< The voice's identifier.
    qint32 volume = 0;
    qint32 speech_rate = 0;
    qint32 pitch_rate = 0;
    QString pageFeature; ///< A label of the host's choice.
};

/// Outcome of a short synthesis.
enum TTS_STATUS : int {
    TTS_SUCCESS = 0,
    TTS_FAILED = 1,
};

/// Outcome of a long synthesis' steps.
enum LONG_TTS_STATUS : int {
    LONG_TTS_SUCCESS = 0,    ///< Task created, or finished with its audio address.
    LONG_TTS_PROCESSING = 1, ///< Task queued or running.
    LONG_TTS_FAILED = 2,
};

Q_DECLARE_METATYPE(OSS_SIGN_INFO *)
Q_DECLARE_METATYPE(SHORT_STT_STATUS)
Q_DECLARE_METATYPE(STT_STATUS)
Q_DECLARE_METATYPE(TTSParams *)
Q_DECLARE_METATYPE(TTS_STATUS)
Q_DECLARE_METATYPE(LONG_TTS_STATUS)

/// The service as a host sees it; VoNetwork::CreateVoNetworkIntf() makes one.
///
/// Every operation is called on the thread that created the object, which must run a Qt event
/// loop; signals are emitted there. An asynchronous operation returns at once and answers exactly
/// once by its signal. Why an operation failed is in the debug log only. No operation has a
/// time-out: a service that never answers leaves it pending.
///
/// Tokens are the numbers that sign-in gives; they are sent in decimal and never kept. Records
/// that a signal carries belong to the receiver, which deletes them.
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
};
