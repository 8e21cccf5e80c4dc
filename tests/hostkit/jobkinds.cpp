#include "tests/hostkit/jobkinds.h"

#include "hostkit/cataloguejobs.h"
#include "hostkit/fetchjob.h"
#include "hostkit/recognizejob.h"
#include "hostkit/session.h"
#include "hostkit/sessionfile.h"
#include "hostkit/signinjobs.h"
#include "hostkit/speakjob.h"
#include "tests/support/scriptedserver.h"
#include "tests/system/answers.h"
#include "tests/system/serviceaddress.h"

#include <QDataStream>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString inAnHour()
{
    return QDateTime::currentDateTime().addSecs(3600).toString(
        QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QJsonObject user()
{
    return {{QStringLiteral("base"), QJsonObject{{QStringLiteral("user_id"), 5}}},
            {QStringLiteral("token"),
             QJsonObject{{QStringLiteral("token"), 18},
                         {QStringLiteral("refresh_token"), 19},
                         {QStringLiteral("token_expire_time"), inAnHour()},
                         {QStringLiteral("refresh_expire_time"), inAnHour()}}}};
}

QByteArray confirmed()
{
    return Answers::envelope(
        {{QStringLiteral("status"), 1}, {QStringLiteral("user_info"), user()}});
}

QByteArray voices()
{
    return Answers::envelope(
        {{QStringLiteral("list"),
          QJsonArray{QJsonObject{{QStringLiteral("name"), QStringLiteral("Rose")}}}}});
}

QByteArray music()
{
    const QJsonArray tracks{QJsonObject{{QStringLiteral("name"), QStringLiteral("Rain")}}};
    return ScriptedServer::reply(
        QJsonDocument({{QStringLiteral("code"), 0}, {QStringLiteral("data"), tracks}}).toJson());
}

QByteArray renewal()
{
    return Answers::envelope(
        {{QStringLiteral("token"), 18}, {QStringLiteral("expire_time"), inAnHour()}});
}

Speech speech(Job::Form form)
{
    Speech hello;
    hello.text = QStringLiteral("hello");
    hello.form = form;
    return hello;
}

QVector<JobKind> speechKinds()
{
    const QByteArray heard = Answers::one("text", "heard");
    return {
        {"speak short",
         {Answers::one("audio", "c291bmQ=")},
         [](HostKit *kit, const QDir &folder) {
             return std::make_unique<SpeakJob>(kit, speech(Job::Form::Short),
                                               folder.filePath(QStringLiteral("out.wav")));
         }},
        {"speak long",
         {Answers::task(), Answers::status("RUNNING"), Answers::finishedSpeech(),
          ScriptedServer::reply("sound")},
         [](HostKit *kit, const QDir &folder) {
             return std::make_unique<SpeakJob>(kit, speech(Job::Form::Long),
                                               folder.filePath(QStringLiteral("out.wav")));
         }},
        {"recognise short",
         {Answers::credentials(), Answers::envelope(), heard},
         [](HostKit *kit, const QDir &folder) {
             return std::make_unique<RecognizeJob>(
                 kit, folder.filePath(QStringLiteral("recording.wav")));
         }},
        {"recognise long",
         {Answers::task(), Answers::status("QUEUEING"), Answers::finishedRecognition()},
         [](HostKit *kit, const QDir &) {
             return std::make_unique<RecognizeJob>(kit, QStringLiteral("https://a/b.wav"));
         }},
        {"fetch",
         {ScriptedServer::reply("whole"), ScriptedServer::reply("whole"),
          ScriptedServer::reply("whole")},
         [](HostKit *, const QDir &folder) {
             return std::make_unique<FetchJob>(serviceAddress() + QStringLiteral("/f"),
                                               folder.filePath(QStringLiteral("out.wav")));
         }},
    };
}

template <typename Kind>
std::unique_ptr<Job> made(HostKit *kit, const QDir &)
{
    return std::make_unique<Kind>(kit);
}

QVector<JobKind> otherKinds()
{
    const QByteArray update = Answers::envelope({{QStringLiteral("upgradeStatus"), 1}});
    return {
        {"voices", {voices()}, made<VoicesJob>},
        {"music", {music()}, made<MusicJob>},
        {"update", {update}, made<UpdateJob>},
        {"renewal", {renewal()}, made<RenewJob>},
        {"code",
         {signInCode(), ScriptedServer::reply("picture"), confirmed()},
         made<CodeSignInJob>},
        {"message",
         {Answers::envelope(), Answers::envelope(user())},
         [](HostKit *kit, const QDir &) {
             auto job = std::make_unique<SmsSignInJob>(kit, QStringLiteral("12345"));
             QObject::connect(job.get(), &SmsSignInJob::codeSent, job.get(),
                              [it = job.get()] { it->enter(QStringLiteral("1")); });
             return job;
         }},
    };
}

} // namespace

QByteArray signInCode(qint64 secondsLeft)
{
    return Answers::envelope(
        {{QStringLiteral("url"), serviceAddress() + QStringLiteral("/code.png")},
         {QStringLiteral("expire_time"), QDateTime::currentSecsSinceEpoch() + secondsLeft},
         {QStringLiteral("business_code"), QStringLiteral("b")}});
}

QVector<JobKind> jobKinds() { return speechKinds() + otherKinds(); }

void signIn(qint64 secondsLeft)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QString problem = SessionFile::save(
        {5, QStringLiteral("Rose"), 17, 19, now.addSecs(secondsLeft), now.addSecs(7200)});
    if (!problem.isEmpty())
        qFatal("%s", qPrintable(problem));
}

void writeRecording(const QString &path, double seconds)
{
    constexpr quint32 rate = 8000;
    const QByteArray samples(int(seconds * rate), '\x80');
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("%s", qPrintable(file.errorString()));
    QDataStream stream(&file);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(samples.size() + 36);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << rate << rate << quint16(1) << quint16(8);
    stream.writeRawData("data", 4);
    stream << quint32(samples.size());
    stream.writeRawData(samples.constData(), samples.size());
}
