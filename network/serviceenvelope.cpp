#include "network/serviceenvelope.h"

#include "network/servicelog.h"

#include <QJsonDocument>
#include <QJsonObject>

std::optional<QJsonValue> ServiceEnvelope::read(const QByteArray &reply,
                                                const ServiceOperation &operation)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(reply, &error);
    if (error.error != QJsonParseError::NoError) {
        ServiceLog::parseError(operation, error);
        return std::nullopt;
    }
    const QJsonObject envelope = document.object(); // empty when the document is an array
    const QJsonValue code = envelope.value(QLatin1String("code"));
    if (code.isUndefined() || code.isNull())
        return std::nullopt;
    // A code that is no whole number, such as a text, reads as 0: such a reply is a success.
    if (code.toInt() != 0) {
        ServiceLog::refusal(operation, code.toInt(),
                            envelope.value(QLatin1String("message")).toString());
        return std::nullopt;
    }
    return envelope.value(QLatin1String("data"));
}
