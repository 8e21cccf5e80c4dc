#pragma once

#include "network/vonetworkintf.h"

#include <QByteArray>
#include <QMetaType>
#include <QStringList>

#include <functional>

/// One operation with sample arguments, and everything that must follow from it. For a synchronous
/// operation, its recorded result stands where others have their signals.
struct Operation
{
    QString name;
    std::function<void(VoNetworkIntf *)> call;      ///< Of an asynchronous one.
    std::function<QString(VoNetworkIntf *)> result; ///< Calls a synchronous one, writes its result.
    QByteArray request;                             ///< All its bytes.
    QStringList start;                              ///< The lines logged before it is sent.
    QString successSlot;                            ///< As the log names it.
    QString failureSlot;
    QString refusal;          ///< The line about a refusal; %1 the code, %2 the quoted message.
    QByteArray data;          ///< The member "data" of a reply that brings a result.
    QString answer;           ///< The signal for it.
    QStringList dataLog;      ///< The lines logged for it; <body> is the quoted body of the reply.
    QStringList emptyAnswers; ///< The signals for a success that brings no data.
    QStringList emptyLog;     ///< The lines logged for that.
    QString failure;          ///< The signal for a reply that is none, or a refusal.
    QString networkFailure;   ///< The signal for a request that failed on the network.
};

Q_DECLARE_METATYPE(Operation)

namespace Operations {

Operation getOssSign();
Operation shortSTT();
Operation createSTTTask();
Operation getSTTTaskResult();
Operation tts();
Operation anonymousTTS();
Operation longTTSTask();
Operation longTTSStatus();
Operation getLoginQrCode();
Operation getLoginQrCodeStatus();
Operation sendSmsVerifyCode();
Operation smsVerifyCodeLogin();
Operation refreshToken();

/// Every asynchronous operation once, in the interface's order.
QList<Operation> all();

Operation getBgmList();
Operation getDubList();
Operation getUpdateInfo();

/// Every synchronous operation that asks the service, once, in the interface's order.
QList<Operation> synchronous();

/// Calls GetUpdateInfo(). The library never deletes the last record: this does so after @p service
/// is gone.
UpdateInfo *updateInfo(VoNetworkIntf *service);

/// The bytes of a GET of the service without any header of the library's own.
QByteArray bareGet(const QByteArray &path);

/// The bytes of a GET of the service with the common headers.
QByteArray get(const QByteArray &path, const QByteArray &deviceId = QByteArray());

/// The bytes of a POST to the service. @p authorization is the header's value; empty: no header.
QByteArray post(const QByteArray &path, const QByteArray &authorization, const QByteArray &body,
                const QByteArray &deviceId = QByteArray());

/// The log line of @p operation when it sends @p body.
QString started(const char *operation, const QByteArray &body);

/// An envelope of code 0 with @p data.
QByteArray envelope(const QByteArray &data);

/// Settings with a value in every field.
TTSParams sampleParams();

} // namespace Operations
