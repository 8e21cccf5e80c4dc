#include "tests/system/localservice.h"
#include "tests/system/signinsteps.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QtEndian>
#include <QtTest>

#include <algorithm>

namespace {

struct Sound
{
    int sampleRate = 0;
    QVector<qint16> samples;

    double seconds() const { return sampleRate > 0 ? double(samples.size()) / sampleRate : 0; }
    int peak() const
    {
        int most = 0;
        for (const qint16 sample : samples)
            most = qMax(most, qAbs(int(sample)));
        return most;
    }
};

// Of a RIFF/WAVE file of one channel and 16 bits with the smallest head; nothing if it is another.
Sound soundOf(const QByteArray &wave)
{
    constexpr int head = 44;
    const auto number = [&](int at) { return qFromLittleEndian<quint32>(wave.constData() + at); };
    if (wave.size() <= head || !wave.startsWith("RIFF") || wave.mid(8, 8) != "WAVEfmt "
        || number(4) != quint32(wave.size() - 8) || number(40) != quint32(wave.size() - head)
        || number(20) != 0x00010001 || number(32) != 0x00100002)
        return {};
    Sound sound{int(number(24)), {}};
    for (int at = head; at + 1 < wave.size(); at += 2)
        sound.samples.append(qFromLittleEndian<qint16>(wave.constData() + at));
    return sound;
}

QStringList avatarAddresses()
{
    QStringList addresses;
    for (const char *name : {"%E5%A5%B301.png", "%E5%A5%B302.png", "avatar_girl.png",
                             "%E7%94%B701.png", "%E7%94%B702.png", "avatar_children.png"})
        addresses.append(SignInSteps::address(QStringLiteral("/speechdesk/voice_avatar/")
                                              + QLatin1String(name)));
    return addresses;
}

QString speechOperation(const char *name)
{
    return SignInSteps::address(QStringLiteral("/convert/public/index.php/v1/asr/")
                                + QLatin1String(name));
}

} // namespace

/// The voices and the music that the service offers, and the files that belong to them.
class TestServiceCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_service.start());
        m_client.reset(new ServiceClient(m_service.authority()));
    }

    void theVoicesAreThoseOfTheEngine()
    {
        QStringList parameters;
        const QJsonArray all = voices();
        for (const QJsonValue &voice : all)
            parameters.append(text(voice, "voiceParam"));
        parameters.sort();
        QCOMPARE(parameters, QStringList({QStringLiteral("awb"), QStringLiteral("kal16"),
                                          QStringLiteral("rms"), QStringLiteral("slt")}));
    }

    void aVoiceIsDescribedInFull()
    {
        const QStringList keys{QStringLiteral("audition_url"), QStringLiteral("avatar"),
                               QStringLiteral("category"),     QStringLiteral("name"),
                               QStringLiteral("scene"),        QStringLiteral("supportFeature"),
                               QStringLiteral("type"),         QStringLiteral("voiceParam")};
        const QStringList categories{
            QStringLiteral("超高清"), QStringLiteral("文学"),     QStringLiteral("通用"),
            QStringLiteral("英文"),   QStringLiteral("美式英语"), QStringLiteral("多语种"),
            QStringLiteral("方言"),   QStringLiteral("客服"),     QStringLiteral("直播"),
            QStringLiteral("童声"),   QStringLiteral("多情感")};
        const QJsonArray all = voices();
        for (const QJsonValue &voice : all) {
            QCOMPARE(voice.toObject().keys(), keys);
            for (const QString &key : keys)
                QVERIFY2(!voice.toObject().value(key).toString().isEmpty(), qPrintable(key));
            QVERIFY(categories.contains(text(voice, "category")));
            QVERIFY(avatarAddresses().contains(text(voice, "avatar")));
            QCOMPARE(text(voice, "supportFeature"), QStringLiteral("语音合成,长文本语音合成"));
        }
    }

    void everyVoiceHasTheFeaturesItIsSaidToHave()
    {
        const QJsonArray all = voices();
        for (const QJsonValue &voice : all) {
            for (const char *feature : {"voiceSynthesis", "longVoiceSynthesis"}) {
                const QJsonObject speech{{QStringLiteral("feature"), QString::fromLatin1(feature)},
                                         {QStringLiteral("text"), QStringLiteral("Hello.")},
                                         {QStringLiteral("voice"), text(voice, "voiceParam")}};
                QCOMPARE(m_client
                             ->post(QStringLiteral("asr/process"), speech,
                                    ServiceClient::authorization())
                             .code(),
                         0);
            }
        }
    }

    void everyVoiceIntroducesItselfInItsAudition()
    {
        const QJsonArray all = voices();
        for (const QJsonValue &voice : all) {
            const auto reply = m_client->get(text(voice, "audition_url"));
            QCOMPARE(reply.header("Content-Type"), QByteArray("audio/wav"));
            const Sound sound = soundOf(reply.body);
            QVERIFY(sound.seconds() > 1 && sound.seconds() < 10);
            QVERIFY(sound.peak() > 3000);
            const QString words = QStringLiteral("Hello, my name is %1. This is how I sound.");
            QVERIFY(reply.body == spoken(words.arg(text(voice, "name")), voice));
        }
    }

    void theStockPicturesAreDifferentPictures()
    {
        QSet<QByteArray> pictures;
        const QStringList addresses = avatarAddresses();
        for (const QString &address : addresses) {
            const auto reply = m_client->get(address);
            QCOMPARE(reply.status, 200);
            QCOMPARE(reply.header("Content-Type"), QByteArray("image/png"));
            const QImage picture = QImage::fromData(reply.body, "PNG");
            QVERIFY2(picture.width() >= 64 && picture.width() == picture.height(),
                     qPrintable(address));
            QSet<QRgb> colours;
            for (int i = 0; i < picture.width(); ++i)
                colours.insert(picture.pixel(i, picture.height() / 2));
            QVERIFY(colours.size() > 3);
            pictures.insert(reply.body);
        }
        QCOMPARE(pictures.size(), 6);
    }

    void theTracksHaveNamesAndAddresses()
    {
        const QJsonArray all = tracks();
        QVERIFY(all.size() >= 3);
        QSet<QString> names;
        for (const QJsonValue &track : all) {
            QCOMPARE(track.toObject().keys(),
                     QStringList({QStringLiteral("name"), QStringLiteral("url")}));
            QVERIFY(!text(track, "name").isEmpty());
            names.insert(text(track, "name"));
        }
        QCOMPARE(names.size(), all.size());
    }

    void aTrackIsEightSecondsOfSound()
    {
        const QJsonArray all = tracks();
        for (const QJsonValue &track : all) {
            const auto reply = m_client->get(text(track, "url"));
            QCOMPARE(reply.header("Content-Type"), QByteArray("audio/wav"));
            const Sound sound = soundOf(reply.body);
            QVERIFY(qAbs(sound.seconds() - 8) < 1);
            QVERIFY(sound.peak() > 3000 && sound.peak() < 32767);
        }
    }

    void aTrackHasNoClicks()
    {
        const QJsonArray all = tracks();
        for (const QJsonValue &track : all) {
            const Sound sound = soundOf(m_client->get(text(track, "url")).body);
            QVERIFY(!sound.samples.isEmpty());
            QVERIFY(qAbs(int(sound.samples.first())) < 50 && qAbs(int(sound.samples.last())) < 50);
            int step = 0;
            for (int i = 1; i < sound.samples.size(); ++i)
                step = qMax(step, qAbs(int(sound.samples.at(i)) - sound.samples.at(i - 1)));
            // A tone of 1320 Hz at the peak rises by about a third of it from sample to sample.
            QVERIFY2(3 * step < 2 * sound.peak(), QByteArray::number(step).constData());
        }
    }

    void aFileIsTheSameEachTime()
    {
        QStringList addresses = avatarAddresses();
        addresses.append(text(voices().at(0), "audition_url"));
        addresses.append(text(tracks().at(0), "url"));
        for (const QString &address : qAsConst(addresses)) {
            const QByteArray first = m_client->get(address).body;
            QVERIFY(!first.isEmpty());
            QCOMPARE(m_client->get(address).body, first);
        }
    }

    void whatIsNoFileIsNotFound_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::newRow("folder") << QByteArray("/speechdesk/voice_avatar/");
        QTest::newRow("unknown picture") << QByteArray("/speechdesk/voice_avatar/a.png");
        QTest::newRow("unknown recording") << QByteArray("/speechdesk/audition/bob.wav");
        QTest::newRow("file of the service")
            << QByteArray("/speechdesk/music/../../tls/server-key.pem");
    }
    void whatIsNoFileIsNotFound()
    {
        QFETCH(const QByteArray, path);
        const auto reply = m_client->verbatim("GET " + path, QByteArray());
        QCOMPARE(reply.status, 404);
        QVERIFY(reply.isRefusal());
    }

private:
    static QString text(const QJsonValue &object, const char *key)
    {
        return object.toObject().value(QLatin1String(key)).toString();
    }

    // The same text and voice give the same audio.
    QByteArray spoken(const QString &words, const QJsonValue &voice)
    {
        const QJsonObject speech{{QStringLiteral("feature"), QStringLiteral("voiceSynthesis")},
                                 {QStringLiteral("text"), words},
                                 {QStringLiteral("voice"), text(voice, "voiceParam")}};
        const auto reply = m_client->post(QStringLiteral("asr/freeProcess"), speech);
        return QByteArray::fromBase64(
            reply.data().value(QLatin1String("audio")).toString().toLatin1());
    }

    QJsonArray voices()
    {
        return m_client->get(speechOperation("getVoice"))
            .data()
            .value(QLatin1String("list"))
            .toArray();
    }

    QJsonArray tracks()
    {
        const auto reply = m_client->get(speechOperation("getBackgroundMusic"));
        return QJsonDocument::fromJson(reply.body).object().value(QLatin1String("data")).toArray();
    }

    LocalService m_service;
    QScopedPointer<ServiceClient> m_client;
};

QTEST_GUILESS_MAIN(TestServiceCatalogue)
#include "tst_servicecatalogue.moc"
