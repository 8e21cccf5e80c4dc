#include "network/vonetworkintf.h"

#include "tests/network/text.h"
#include "tests/support/logcapture.h"
#include "tests/support/patience.h"

#include <QMetaEnum>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QVector>

#include <cstddef>
#include <cstring>
#include <type_traits>

static_assert(std::is_base_of_v<QObject, VoNetworkIntf>);
static_assert(std::is_abstract_v<VoNetworkIntf>);
static_assert(std::has_virtual_destructor_v<VoNetworkIntf>);
static_assert(sizeof(VoNetworkIntf) == sizeof(QObject), "the interface holds no data");

// The operations' arguments and results.
template <typename Type, typename Member>
constexpr bool is = std::is_same_v<Type, Member>;
static_assert(is<decltype(&VoNetworkIntf::GetOssSign), void (VoNetworkIntf::*)()>);
static_assert(
    is<decltype(&VoNetworkIntf::ShortSTT), void (VoNetworkIntf::*)(QString, qint64, QString)>);
static_assert(
    is<decltype(&VoNetworkIntf::CreateSTTTask), void (VoNetworkIntf::*)(QString, qint64, QString)>);
static_assert(
    is<decltype(&VoNetworkIntf::GetSTTTaskResult), void (VoNetworkIntf::*)(QString, qint64)>);
static_assert(
    is<decltype(&VoNetworkIntf::TTS), void (VoNetworkIntf::*)(TTSParams *, bool, qint64)>);
static_assert(
    is<decltype(&VoNetworkIntf::LongTTSTask), void (VoNetworkIntf::*)(TTSParams *, qint64)>);
static_assert(
    is<decltype(&VoNetworkIntf::LongTTSStatus), void (VoNetworkIntf::*)(QString, qint64)>);
static_assert(
    is<decltype(&VoNetworkIntf::DownloadLongTTSRet), bool (VoNetworkIntf::*)(QString, QString)>);
static_assert(is<decltype(&VoNetworkIntf::GetBgmList), QList<BgmInfo *> (VoNetworkIntf::*)()>);
static_assert(is<decltype(&VoNetworkIntf::GetDubList), QList<DubInfo *> (VoNetworkIntf::*)()>);
static_assert(is<decltype(&VoNetworkIntf::GetUpdateInfo), UpdateInfo *(VoNetworkIntf::*)()>);
static_assert(is<decltype(&VoNetworkIntf::GetLoginQrCode), void (VoNetworkIntf::*)()>);
static_assert(is<decltype(&VoNetworkIntf::GetLoginQrCodeStatus), void (VoNetworkIntf::*)(QString)>);
static_assert(is<decltype(&VoNetworkIntf::SendSmsVerifyCode), void (VoNetworkIntf::*)(QString)>);
static_assert(
    is<decltype(&VoNetworkIntf::SmsVerifyCodeLogin), void (VoNetworkIntf::*)(QString, QString)>);
static_assert(is<decltype(&VoNetworkIntf::RefreshToken), void (VoNetworkIntf::*)(qint64)>);

// The signals': texts by value, records as plain pointers.
static_assert(
    is<decltype(&VoNetworkIntf::signalGetOssSign), void (VoNetworkIntf::*)(OSS_SIGN_INFO *)>);
static_assert(is<decltype(&VoNetworkIntf::signalShortSTT),
                 void (VoNetworkIntf::*)(SHORT_STT_STATUS, QString)>);
static_assert(is<decltype(&VoNetworkIntf::signalCreateSTTTask),
                 void (VoNetworkIntf::*)(STT_STATUS, QString)>);
static_assert(is<decltype(&VoNetworkIntf::signalGetSTTResult),
                 void (VoNetworkIntf::*)(STT_STATUS, QString, QString, QString)>);
static_assert(
    is<decltype(&VoNetworkIntf::signalTTSRet), void (VoNetworkIntf::*)(TTS_STATUS, QString)>);
static_assert(is<decltype(&VoNetworkIntf::signalLongTTSTask),
                 void (VoNetworkIntf::*)(LONG_TTS_STATUS, QString)>);
static_assert(is<decltype(&VoNetworkIntf::signalGetLongTTSResult),
                 void (VoNetworkIntf::*)(LONG_TTS_STATUS, QString, QString, QString)>);
static_assert(
    is<decltype(&VoNetworkIntf::signalGetLoginQrCodeEnd), void (VoNetworkIntf::*)(LoginQrCode *)>);
static_assert(is<decltype(&VoNetworkIntf::signalGetLoginQrCodeStatusEnd),
                 void (VoNetworkIntf::*)(UserInfo *)>);
static_assert(is<decltype(&VoNetworkIntf::signalSendSmsEnd), void (VoNetworkIntf::*)()>);
static_assert(is<decltype(&VoNetworkIntf::signalSmsLoginEnd), void (VoNetworkIntf::*)(UserInfo *)>);
static_assert(is<decltype(&VoNetworkIntf::signalRefreshTokenEnd),
                 void (VoNetworkIntf::*)(qlonglong, QDateTime)>);

namespace {

/// The least that implements the interface.
class Implementation : public VoNetworkIntf
{
public:
    void GetOssSign() override {}
    void ShortSTT(QString, qint64, QString) override {}
    void CreateSTTTask(QString, qint64, QString) override {}
    void GetSTTTaskResult(QString, qint64) override {}
    void TTS(TTSParams *, bool, qint64) override {}
    void LongTTSTask(TTSParams *, qint64) override {}
    void LongTTSStatus(QString, qint64) override {}
    bool DownloadLongTTSRet(QString, QString) override { return false; }
    QList<BgmInfo *> GetBgmList() override { return {}; }
    QList<DubInfo *> GetDubList() override { return {}; }
    UpdateInfo *GetUpdateInfo() override { return nullptr; }
    void GetLoginQrCode() override {}
    void GetLoginQrCodeStatus(QString) override {}
    void SendSmsVerifyCode(QString) override {}
    void SmsVerifyCodeLogin(QString, QString) override {}
    void RefreshToken(qint64) override {}
};

/// A host of the old kind: slots that are connected by their texts.
class Receiver : public QObject
{
    Q_OBJECT

public:
    OSS_SIGN_INFO *record = nullptr;
    LoginQrCode *code = nullptr;
    QList<UserInfo *> users;
    QStringList received;

public Q_SLOTS:
    void onGetOssSign(OSS_SIGN_INFO *info) { record = info; }
    void onShortSTT(SHORT_STT_STATUS status, QString text) { note(status, {text}); }
    void onCreateSTTTask(STT_STATUS status, QString taskid) { note(status, {taskid}); }
    void onGetSTTResult(STT_STATUS status, QString taskid, QString request_id, QString text)
    {
        note(status, {taskid, request_id, text});
    }
    void onTTSRet(TTS_STATUS status, QString audio) { note(status, {audio}); }
    void onLongTTSTask(LONG_TTS_STATUS status, QString taskId) { note(status, {taskId}); }
    void onGetLongTTSResult(LONG_TTS_STATUS status, QString taskid, QString request_id, QString url)
    {
        note(status, {taskid, request_id, url});
    }
    void onGetLoginQrCodeEnd(LoginQrCode *info) { code = info; }
    void onGetLoginQrCodeStatusEnd(UserInfo *user) { users.append(user); }
    void onSendSmsEnd() { received.append(QStringLiteral("sent")); }
    void onSmsLoginEnd(UserInfo *user) { users.append(user); }
    void onRefreshTokenEnd(qlonglong token, QDateTime expires)
    {
        received.append(QString::number(token) + QLatin1Char(' ') + expires.toString(Qt::ISODate));
    }

private:
    void note(int status, const QStringList &texts)
    {
        received.append(QString::number(status) + QLatin1Char(' ') + texts.join(QLatin1Char(' ')));
    }
};

#ifndef Q_CC_MSVC
/// Where a virtual member function stands in its class' table. Under the ABI that is common to all
/// compilers but one, a pointer to it holds its distance from the table's start, plus 1.
template <typename Member>
std::ptrdiff_t slotOf(Member member)
{
    std::ptrdiff_t distance = 0;
    std::memcpy(&distance, &member, sizeof distance);
    return (distance - 1) / std::ptrdiff_t(sizeof(void *));
}

class LastOfQObject : public QObject
{
public:
    static std::ptrdiff_t slot() { return slotOf(&LastOfQObject::disconnectNotify); }
};
#endif

/// One record of each kind that a signal carries.
struct Records
{
    OSS_SIGN_INFO sign;
    LoginQrCode code;
    UserInfo scanned;
    UserInfo loggedIn;
};

const QDateTime date(QDate(2030, 1, 2), QTime(3, 4, 5));

void emitAll(VoNetworkIntf &intf, Records *records)
{
    Q_EMIT intf.signalGetOssSign(&records->sign);
    Q_EMIT intf.signalShortSTT(SHORT_STT_FAILED, "a"_s);
    Q_EMIT intf.signalCreateSTTTask(STT_PROCESSING, "b"_s);
    Q_EMIT intf.signalGetSTTResult(STT_FAILED, "c"_s, "d"_s, "e"_s);
    Q_EMIT intf.signalTTSRet(TTS_FAILED, "f"_s);
    Q_EMIT intf.signalLongTTSTask(LONG_TTS_PROCESSING, "g"_s);
    Q_EMIT intf.signalGetLongTTSResult(LONG_TTS_FAILED, "h"_s, "i"_s, "j"_s);
    Q_EMIT intf.signalGetLoginQrCodeEnd(&records->code);
    Q_EMIT intf.signalGetLoginQrCodeStatusEnd(&records->scanned);
    Q_EMIT intf.signalSendSmsEnd();
    Q_EMIT intf.signalSmsLoginEnd(&records->loggedIn);
    Q_EMIT intf.signalRefreshTokenEnd(Q_INT64_C(9007199254740993), date);
}

} // namespace

/// The interface and what crosses it.
class TestVoNetworkIntf : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void registersEveryTypeOfItsSignals_data();
    void registersEveryTypeOfItsSignals();
    void declaresItsSignalsInOrder();
    void declaresNothingElse();
    void startsWithoutAParent();
    void listsItsOperationsInTheVirtualTableInOrder();
    void carriesItsSignalsToSpies();
    void carriesItsSignalsThroughQueuedConnectionsByText();
};

void TestVoNetworkIntf::registersEveryTypeOfItsSignals_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"OSS_SIGN_INFO*", "SHORT_STT_STATUS", "STT_STATUS", "TTSParams*",
                             "TTS_STATUS", "LONG_TTS_STATUS", "DubType", "DubInfo*", "BgmInfo*",
                             "LoginQrCode*", "UserInfo*", "UpdateInfo*"})
        QTest::newRow(name) << QByteArray(name);
}

void TestVoNetworkIntf::registersEveryTypeOfItsSignals()
{
    QFETCH(QByteArray, name);
    const Implementation object;
    const int type = QMetaType::type(name.constData());
    QVERIFY(type != QMetaType::UnknownType);
    QCOMPARE(QMetaType::typeName(type), name.constData());
}

void TestVoNetworkIntf::declaresItsSignalsInOrder()
{
    const QMetaObject &meta = VoNetworkIntf::staticMetaObject;
    QStringList declared;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Signal);
        QCOMPARE(method.access(), QMetaMethod::Public);
        QCOMPARE(method.typeName(), "void");
        declared.append(QString::fromLatin1(method.methodSignature()) + QLatin1Char(' ')
                        + QString::fromLatin1(method.parameterNames().join(',')));
    }
    QCOMPARE(declared,
             (QStringList{"signalGetOssSign(OSS_SIGN_INFO*) pSignInfo"_s,
                          "signalShortSTT(SHORT_STT_STATUS,QString) status,text"_s,
                          "signalCreateSTTTask(STT_STATUS,QString) status,taskid"_s,
                          "signalGetSTTResult(STT_STATUS,QString,QString,QString) "
                          ",taskid,request_id,text"_s,
                          "signalTTSRet(TTS_STATUS,QString) status,audioBase64"_s,
                          "signalLongTTSTask(LONG_TTS_STATUS,QString) status,taskId"_s,
                          "signalGetLongTTSResult(LONG_TTS_STATUS,QString,QString,QString) "
                          ",taskid,request_id,audioUrl"_s,
                          "signalGetLoginQrCodeEnd(LoginQrCode*) pLoginQrCodeInfo"_s,
                          "signalGetLoginQrCodeStatusEnd(UserInfo*) pUserInfo"_s,
                          "signalSendSmsEnd() "_s, "signalSmsLoginEnd(UserInfo*) pUInfo"_s,
                          "signalRefreshTokenEnd(qlonglong,QDateTime) newToken,expireTime"_s}));
}

void TestVoNetworkIntf::declaresNothingElse()
{
    const QMetaObject &meta = VoNetworkIntf::staticMetaObject;
    QCOMPARE(meta.className(), "VoNetworkIntf");
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    QCOMPARE(meta.classInfoCount(), 0);
    QCOMPARE(meta.constructorCount(), 0);
}

void TestVoNetworkIntf::startsWithoutAParent()
{
    const Implementation object;
    QVERIFY(!object.parent());
    QVERIFY(object.children().isEmpty());
}

void TestVoNetworkIntf::listsItsOperationsInTheVirtualTableInOrder()
{
#ifdef Q_CC_MSVC
    QTest::qSkip("Pointers to members do not tell their place here.", __FILE__, __LINE__);
#else
    const QVector<std::ptrdiff_t> order{
        slotOf(&VoNetworkIntf::GetOssSign),           slotOf(&VoNetworkIntf::ShortSTT),
        slotOf(&VoNetworkIntf::CreateSTTTask),        slotOf(&VoNetworkIntf::GetSTTTaskResult),
        slotOf(&VoNetworkIntf::GetBgmList),           slotOf(&VoNetworkIntf::TTS),
        slotOf(&VoNetworkIntf::LongTTSTask),          slotOf(&VoNetworkIntf::LongTTSStatus),
        slotOf(&VoNetworkIntf::DownloadLongTTSRet),   slotOf(&VoNetworkIntf::GetDubList),
        slotOf(&VoNetworkIntf::GetUpdateInfo),        slotOf(&VoNetworkIntf::GetLoginQrCode),
        slotOf(&VoNetworkIntf::GetLoginQrCodeStatus), slotOf(&VoNetworkIntf::SendSmsVerifyCode),
        slotOf(&VoNetworkIntf::SmsVerifyCodeLogin),   slotOf(&VoNetworkIntf::RefreshToken)};
    QVector<std::ptrdiff_t> expected;
    for (int i = 1; i <= order.size(); ++i)
        expected.append(LastOfQObject::slot() + i);
    QCOMPARE(order, expected);
#endif
}

void TestVoNetworkIntf::carriesItsSignalsToSpies()
{
    Implementation object;
    Records records;
    QSignalSpy sign(&object, SIGNAL(signalGetOssSign(OSS_SIGN_INFO *)));
    QSignalSpy shortStt(&object, SIGNAL(signalShortSTT(SHORT_STT_STATUS, QString)));
    QSignalSpy create(&object, SIGNAL(signalCreateSTTTask(STT_STATUS, QString)));
    QSignalSpy stt(&object, SIGNAL(signalGetSTTResult(STT_STATUS, QString, QString, QString)));
    QSignalSpy tts(&object, SIGNAL(signalTTSRet(TTS_STATUS, QString)));
    QSignalSpy task(&object, SIGNAL(signalLongTTSTask(LONG_TTS_STATUS, QString)));
    QSignalSpy longTts(&object,
                       SIGNAL(signalGetLongTTSResult(LONG_TTS_STATUS, QString, QString, QString)));
    QSignalSpy code(&object, SIGNAL(signalGetLoginQrCodeEnd(LoginQrCode *)));
    QSignalSpy scanned(&object, SIGNAL(signalGetLoginQrCodeStatusEnd(UserInfo *)));
    QSignalSpy sms(&object, SIGNAL(signalSendSmsEnd()));
    QSignalSpy loggedIn(&object, SIGNAL(signalSmsLoginEnd(UserInfo *)));
    QSignalSpy refreshed(&object, SIGNAL(signalRefreshTokenEnd(qlonglong, QDateTime)));
    emitAll(object, &records);

    QCOMPARE(sign.value(0).value(0).value<OSS_SIGN_INFO *>(), &records.sign);
    QCOMPARE(shortStt.value(0).value(0).value<SHORT_STT_STATUS>(), SHORT_STT_FAILED);
    QCOMPARE(shortStt.value(0).value(1).toString(), "a"_s);
    QCOMPARE(create.value(0).value(0).value<STT_STATUS>(), STT_PROCESSING);
    QCOMPARE(stt.value(0).value(0).value<STT_STATUS>(), STT_FAILED);
    QCOMPARE(stt.value(0).value(3).toString(), "e"_s);
    QCOMPARE(tts.value(0).value(0).value<TTS_STATUS>(), TTS_FAILED);
    QCOMPARE(task.value(0).value(0).value<LONG_TTS_STATUS>(), LONG_TTS_PROCESSING);
    QCOMPARE(longTts.value(0).value(0).value<LONG_TTS_STATUS>(), LONG_TTS_FAILED);
    QCOMPARE(longTts.value(0).value(3).toString(), "j"_s);
    QCOMPARE(code.value(0).value(0).value<LoginQrCode *>(), &records.code);
    QCOMPARE(scanned.value(0).value(0).value<UserInfo *>(), &records.scanned);
    QCOMPARE(sms.size(), 1);
    QCOMPARE(loggedIn.value(0).value(0).value<UserInfo *>(), &records.loggedIn);
    QCOMPARE(refreshed.value(0).value(0).toLongLong(), Q_INT64_C(9007199254740993));
    QCOMPARE(refreshed.value(0).value(1).toDateTime(), date);
}

void TestVoNetworkIntf::carriesItsSignalsThroughQueuedConnectionsByText()
{
    const LogCapture log;
    Implementation object;
    Receiver host;
    const auto queue = [&](const char *signal, const char *slot) {
        return bool(connect(&object, signal, &host, slot, Qt::QueuedConnection));
    };
    QVERIFY(queue(SIGNAL(signalGetOssSign(OSS_SIGN_INFO *)), SLOT(onGetOssSign(OSS_SIGN_INFO *))));
    QVERIFY(queue(SIGNAL(signalShortSTT(SHORT_STT_STATUS, QString)),
                  SLOT(onShortSTT(SHORT_STT_STATUS, QString))));
    QVERIFY(queue(SIGNAL(signalCreateSTTTask(STT_STATUS, QString)),
                  SLOT(onCreateSTTTask(STT_STATUS, QString))));
    QVERIFY(queue(SIGNAL(signalGetSTTResult(STT_STATUS, QString, QString, QString)),
                  SLOT(onGetSTTResult(STT_STATUS, QString, QString, QString))));
    QVERIFY(queue(SIGNAL(signalTTSRet(TTS_STATUS, QString)), SLOT(onTTSRet(TTS_STATUS, QString))));
    QVERIFY(queue(SIGNAL(signalLongTTSTask(LONG_TTS_STATUS, QString)),
                  SLOT(onLongTTSTask(LONG_TTS_STATUS, QString))));
    QVERIFY(queue(SIGNAL(signalGetLongTTSResult(LONG_TTS_STATUS, QString, QString, QString)),
                  SLOT(onGetLongTTSResult(LONG_TTS_STATUS, QString, QString, QString))));
    QVERIFY(queue(SIGNAL(signalGetLoginQrCodeEnd(LoginQrCode *)),
                  SLOT(onGetLoginQrCodeEnd(LoginQrCode *))));
    QVERIFY(queue(SIGNAL(signalGetLoginQrCodeStatusEnd(UserInfo *)),
                  SLOT(onGetLoginQrCodeStatusEnd(UserInfo *))));
    QVERIFY(queue(SIGNAL(signalSendSmsEnd()), SLOT(onSendSmsEnd())));
    QVERIFY(queue(SIGNAL(signalSmsLoginEnd(UserInfo *)), SLOT(onSmsLoginEnd(UserInfo *))));
    QVERIFY(queue(SIGNAL(signalRefreshTokenEnd(qlonglong, QDateTime)),
                  SLOT(onRefreshTokenEnd(qlonglong, QDateTime))));
    Records records;
    emitAll(object, &records);
    QCOMPARE(host.received, QStringList());
    TRY_COMPARE(host.received.size(), 8);
    QCOMPARE(host.record, &records.sign);
    QCOMPARE(host.code, &records.code);
    QCOMPARE(host.users, (QList<UserInfo *>{&records.scanned, &records.loggedIn}));
    QCOMPARE(host.received,
             (QStringList{"1 a"_s, "1 b"_s, "2 c d e"_s, "1 f"_s, "1 g"_s, "2 h i j"_s, "sent"_s,
                          "9007199254740993 2030-01-02T03:04:05"_s}));
    QVERIFY(log.lines().isEmpty());
}

QTEST_GUILESS_MAIN(TestVoNetworkIntf)
#include "tst_vonetworkintf.moc"
