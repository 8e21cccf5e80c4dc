#include "network/servicelog.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

void ServiceLog::begin(const char *operation, const QJsonObject &body)
{
    qDebug() << operation << QString::fromUtf8(QJsonDocument(body).toJson());
}

void ServiceLog::failure(const char *slot, const QByteArray &failInfo)
{
    qDebug() << "[error]" << slot << QString::fromLocal8Bit(failInfo); // as the toolkit wrote it
}
