#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QObject>
#include <QString>
#include <QVariantMap>

/// A receiver whose members have many forms, for callback keys to name. It counts the calls.
class CallbackReceiver : public QObject
{
    Q_OBJECT

public:
    int calls = 0;

public Q_SLOTS:
    void onNothing() { ++calls; }
    void onAny() { ++calls; }
    void onAny(QByteArray) { ++calls; }
    void onAny(QString) { ++calls; }
    void onAny(QVariantMap) { ++calls; }
    void onAny(QNetworkReply *) { ++calls; }
    void onAny(QNetworkReply::NetworkError) { ++calls; }
    void onAny(qint64, qint64 = 0) { ++calls; }

Q_SIGNALS:
    void passedOn(QByteArray);
};
