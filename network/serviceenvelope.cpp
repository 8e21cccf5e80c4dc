#include "network/serviceenvelope.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

void logParseError(const char *slot, const QJsonParseError &error)
{
    qDebug() << QStringLiteral("[error][%1]json parse error:%2")
                    .arg(QLatin1String(slot), error.errorString());
}

void logRefusal(const ServiceEnvelope::Texts &texts, int code, const QString &message)
{
    if (texts.separator)
        qDebug() << texts.refusal << code << texts.separator << message;
    else
        qDebug() << texts.refusal << message;
}

} // namespace

std::optional<QJsonValue> ServiceEnvelope::read(const QByteArray &reply, const Texts &texts)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(reply, &error);
    if (error.error != QJsonParseError::NoError) {
        logParseError(texts.slot, error);
        return std::nullopt;
    }
    const QJsonObject envelope = document.object(); // empty when the document is an array
    const QJsonValue code = envelope.value(QLatin1String("code"));
    if (code.isUndefined() || code.isNull())
        return std::nullopt;
    // A code that is no whole number reads as 0 and so is a success.
    if (code.toInt() != 0) {
        logRefusal(texts, code.toInt(), envelope.value(QLatin1String("message")).toString());
        return std::nullopt;
    }
    return envelope.value(QLatin1String("data"));
}
