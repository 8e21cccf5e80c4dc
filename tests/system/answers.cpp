#include "answers.h"

#include "serviceaddress.h"
#include "tests/support/scriptedserver.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QString storage() { return serviceAddress() + QStringLiteral("/storage"); }

QJsonObject taskObject(const char *status)
{
    return {{QStringLiteral("status"), QString::fromLatin1(status)},
            {QStringLiteral("task_id"), QStringLiteral("t")},
            {QStringLiteral("request_id"), QStringLiteral("r")}};
}

} // namespace

QByteArray Answers::envelope(const QJsonObject &data)
{
    return ScriptedServer::reply(QJsonDocument({{QStringLiteral("code"), 0},
                                                {QStringLiteral("message"), QStringLiteral("ok")},
                                                {QStringLiteral("data"), data}})
                                     .toJson());
}

QByteArray Answers::refusal(int code, const char *message)
{
    return ScriptedServer::reply(
        QJsonDocument({{QStringLiteral("code"), code},
                       {QStringLiteral("message"), QString::fromLatin1(message)}})
            .toJson());
}

QByteArray Answers::one(const char *name, const char *value)
{
    return envelope({{QString::fromLatin1(name), QString::fromUtf8(value)}});
}

QByteArray Answers::credentials(const QString &endpoint)
{
    return envelope({{QStringLiteral("AccessKeyId"), QStringLiteral("a")},
                     {QStringLiteral("AccessKeySecret"), QStringLiteral("b")},
                     {QStringLiteral("endpoint"), endpoint.isNull() ? storage() : endpoint},
                     {QStringLiteral("bucketName"), QStringLiteral("speech")},
                     {QStringLiteral("dir"), QStringLiteral("uploads/x")},
                     {QStringLiteral("SecurityToken"), QStringLiteral("top secret")},
                     {QStringLiteral("bucketRegion"), QStringLiteral("r")}});
}

QByteArray Answers::task() { return one("task_id", "t"); }

QByteArray Answers::status(const char *status) { return envelope(taskObject(status)); }

QByteArray Answers::finishedSpeech(const QString &address)
{
    QJsonObject data = taskObject("SUCCESS");
    data.insert(QStringLiteral("audio_address"),
                address.isNull() ? storage() + QStringLiteral("/a.wav") : address);
    return envelope(data);
}

QByteArray Answers::finishedRecognition()
{
    const QJsonArray sentences{
        QJsonObject{{QStringLiteral("Text"), QStringLiteral("one ")}},
        QJsonObject{{QStringLiteral("Text"), QStringLiteral("two")}},
    };
    QJsonObject data = taskObject("SUCCESS");
    data.insert(QStringLiteral("result"), QJsonObject{{QStringLiteral("Sentences"), sentences}});
    return envelope(data);
}
