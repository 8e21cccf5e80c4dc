#include "network/vonetworkintf.h"

#include "tests/network/records.h"
#include "tests/network/text.h"

#include <QTest>
#include <QVector>

// The values that cross the boundary.
static_assert(SHORT_STT_SUCCESS == 0 && SHORT_STT_FAILED == 1);
static_assert(STT_SUCCESS == 0 && STT_PROCESSING == 1 && STT_FAILED == 2);
static_assert(TTS_SUCCESS == 0 && TTS_FAILED == 1);
static_assert(LONG_TTS_SUCCESS == 0 && LONG_TTS_PROCESSING == 1 && LONG_TTS_FAILED == 2);
static_assert(DUB_TYPE_UNSET == 0 && DUB_TYPE_ULTRA_HD == 1 && DUB_TYPE_LITERATURE == 2
              && DUB_TYPE_GENERAL == 3 && DUB_TYPE_FOREIGN_LANGUAGE == 4 && DUB_TYPE_DIALECT == 5
              && DUB_TYPE_CUSTOMER_SERVICE == 6 && DUB_TYPE_LIVE_STREAMING == 7
              && DUB_TYPE_CHILD == 8 && DUB_TYPE_EMOTIONAL == 9);
static_assert(sizeof(SHORT_STT_STATUS) == 4 && sizeof(STT_STATUS) == 4 && sizeof(TTS_STATUS) == 4
              && sizeof(LONG_TTS_STATUS) == 4 && sizeof(DubType) == 4);

namespace {

template <typename... Fields>
QVector<const void *> places(const Fields &...fields)
{
    return {&fields...};
}

} // namespace

/// What crosses the interface, before it is filled.
class TestRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsARecordOfCredentialsEmptyAndInOrder();
    void startsSettingsEmptyAndInOrder();
    void startsAVoiceEmptyAndInOrder();
    void startsATrackEmptyAndInOrder();
    void startsACodeEmptyAndInOrder();
    void startsAUserWithoutNumbersAndInOrder();
    void startsAnUpdateEmptyAndInOrder();
};

void TestRecords::startsARecordOfCredentialsEmptyAndInOrder()
{
    const OSS_SIGN_INFO info;
    // As many names as there are fields: no more and no fewer would compile.
    const auto &[id, secret, endpoint, bucket, dir, token, region] = info;
    QCOMPARE(places(id, secret, endpoint, bucket, dir, token, region),
             places(info.AccessKeyId, info.AccessKeySecret, info.endpoint, info.bucketName,
                    info.dir, info.SecurityToken, info.bucketRegion));
    QCOMPARE(written(info), R"(("", "", "", "", "", "", ""))"_s);
}

void TestRecords::startsSettingsEmptyAndInOrder()
{
    const TTSParams params;
    const auto &[text, format, rate, voice, volume, speed, pitch, page] = params;
    QCOMPARE(places(text, format, rate, voice, volume, speed, pitch, page),
             places(params.text, params.format, params.sample_rate, params.voice, params.volume,
                    params.speech_rate, params.pitch_rate, params.pageFeature));
    QCOMPARE(written(params), R"(("", "", 0, "", 0, 0, 0, ""))"_s);
}

void TestRecords::startsAVoiceEmptyAndInOrder()
{
    const DubInfo info;
    const auto &[name, voice, type, dubType, category, avatar, scene, audition, shortTexts,
                 longTexts] = info;
    QCOMPARE(places(name, voice, type, dubType, category, avatar, scene, audition, shortTexts,
                    longTexts),
             places(info.name, info.voiceParam, info.type, info.dubType, info.category, info.avatar,
                    info.scene, info.audition_url, info.supportTTS, info.supportLongTTS));
    QCOMPARE(written(info), R"(("", "", "", 0, "", "", "", "", false, false))"_s);
}

void TestRecords::startsATrackEmptyAndInOrder()
{
    const BgmInfo info;
    const auto &[name, url] = info;
    QCOMPARE(places(name, url), places(info.name, info.url));
    QCOMPARE(written(info), R"(("", ""))"_s);
}

void TestRecords::startsACodeEmptyAndInOrder()
{
    const LoginQrCode code;
    const auto &[path, expires, business] = code;
    QCOMPARE(places(path, expires, business),
             places(code.qrImagePath, code.expire_time, code.business_code));
    QCOMPARE(written(code), R"(("", invalid, ""))"_s);
}

void TestRecords::startsAUserWithoutNumbersAndInOrder()
{
    const UserInfo user;
    const auto &[id, nickname, header, token, refresh, tokenEnd, refreshEnd] = user;
    QCOMPARE(places(id, nickname, header, token, refresh, tokenEnd, refreshEnd),
             places(user.user_id, user.nickname, user.header_url, user.token, user.refresh_token,
                    user.token_expire_time, user.refresh_expire_time));
    QCOMPARE(written(user), R"((-1, "", "", -1, -1, invalid, invalid))"_s);
}

void TestRecords::startsAnUpdateEmptyAndInOrder()
{
    const UpdateInfo info;
    const auto &[status, current, version, log, url] = info;
    QCOMPARE(places(status, current, version, log, url),
             places(info.upgradeStatus, info.currentVersion, info.version_code,
                    info.external_update_log, info.url));
    QCOMPARE(written(info), R"((0, "", "", "", ""))"_s);
}

QTEST_GUILESS_MAIN(TestRecords)
#include "tst_records.moc"
