#pragma once

#include "network/vonetworkintf.h"

#include <QByteArray>
#include <QMetaType>
#include <QStringList>

#include <functional>

/// One asynchronous operation with sample arguments, and everything that must follow from it.
struct Operation
{
    QString name;
    std::function<void(VoNetworkIntf *)> call;
    QByteArray request; ///< All its bytes.
    QString start;      ///< The line logged before it is sent.
    QString successSlot;
    QString failureSlot;
    QString refusal;      ///< The line about a refusal; %1 the code, %2 the quoted message.
    QByteArray data;      ///< The member "data" of a reply that brings a result.
    QString answer;       ///< The signal for it.
    QStringList dataLog;  ///< The lines logged for it.
    QString emptyAnswer;  ///< The signal for a success that brings no data.
    QStringList emptyLog; ///< The lines logged for that.
    QString failure;      ///< The signal for a request that failed.
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

/// Every operation once, in the interface's order.
QList<Operation> all();

/// The bytes of a GET of the service without any header of the library's own.
QByteArray bareGet(const QByteArray &path);

/// The bytes of a POST to the service. @p authorization: the header's value, none when empty.
QByteArray post(const QByteArray &path, const QByteArray &authorization, const QByteArray &body,
                const QByteArray &deviceId = QByteArray());

/// An envelope of code 0 with @p data.
QByteArray envelope(const QByteArray &data);

/// Settings with a value in every field.
TTSParams sampleParams();

} // namespace Operations
