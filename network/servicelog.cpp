#include "network/servicelog.h"

#include "network/serviceoperation.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QLatin1String loggedStem(const ServiceOperation &operation)
{
    return QLatin1String(operation.loggedStem ? operation.loggedStem : operation.stem);
}

} // namespace

// The debug stream puts quotation marks around a QString or a QByteArray, and none around a char
// array. The type in which a text goes into the stream decides whether its line has them.

void ServiceLog::begin(const char *name) { qDebug() << name; }

void ServiceLog::begin(const char *name, const QJsonObject &body)
{
    begin(name, QString::fromUtf8(QJsonDocument(body).toJson()));
}

void ServiceLog::begin(const char *name, const QString &subject) { qDebug() << name << subject; }

void ServiceLog::beginDownload(const char *name, const char *from, const QString &address,
                               const char *to, const QString &path)
{
    qDebug() << name << from << address << to << path;
}

void ServiceLog::failure(const ServiceOperation &operation, const QByteArray &failInfo)
{
    const QByteArray slot = QByteArray("VoNetworker::slot") + operation.stem + "Fail";
    qDebug() << "[error]" << slot.constData() << QString::fromUtf8(failInfo);
}

void ServiceLog::parseError(const ServiceOperation &operation, const QJsonParseError &error)
{
    qDebug() << QStringLiteral("[error][slot%1Suc]json parse error:%2")
                    .arg(loggedStem(operation), error.errorString());
}

void ServiceLog::refusal(const ServiceOperation &operation, int code, const QString &message)
{
    const QByteArray text = QString::fromLatin1(operation.refusal.text)
                                .replace(QLatin1String("%1"), loggedStem(operation))
                                .toLatin1();
    if (operation.refusal.separator)
        qDebug() << text.constData() << code << operation.refusal.separator << message;
    else
        qDebug() << text.constData() << message;
}
