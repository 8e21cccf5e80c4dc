#include "tests/network/text.h"
#include "tests/support/patience.h"

#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

namespace {

/// The names without their addresses and kinds.
QSet<QString> exportedSymbols()
{
    QProcess nm;
    nm.start(QStringLiteral(NM), {"-D"_s, "--defined-only"_s, "-C"_s, QStringLiteral(LIBRARY)});
    nm.waitForFinished(patienceMs);
    if (nm.exitStatus() != QProcess::NormalExit || nm.exitCode() != 0)
        qFatal("%s", nm.readAllStandardError().constData());
    QSet<QString> symbols;
    const QStringList lines =
        QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    static const QRegularExpression line(QStringLiteral("^[0-9a-f]* *[A-Za-z] (.*)$"));
    for (const QString &text : lines)
        symbols.insert(line.match(text).captured(1));
    return symbols;
}

} // namespace

/// What the shared library shows of itself.
class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exportsEveryMemberOfItsClasses_data();
    void exportsEveryMemberOfItsClasses();
    void exportsNothingElse();
};

void TestExports::exportsEveryMemberOfItsClasses_data()
{
    QTest::addColumn<QString>("symbol");
    const auto row = [](const QString &symbol) {
        QTest::newRow(symbol.toLatin1().constData()) << symbol;
    };
    for (const char *name : {"VoNetwork", "VoNetworkIntf", "VoNetworker"}) {
        const QString klass = QLatin1String(name);
        row("%1::%1()"_s.arg(klass));
        row("%1::~%1()"_s.arg(klass));
        row("%1::staticMetaObject"_s.arg(klass));
        row("%1::metaObject() const"_s.arg(klass));
        row("%1::qt_metacast(char const*)"_s.arg(klass));
        row("%1::qt_metacall(QMetaObject::Call, int, void**)"_s.arg(klass));
        row("vtable for %1"_s.arg(klass));
        row("typeinfo for %1"_s.arg(klass));
        row("typeinfo name for %1"_s.arg(klass));
    }
    for (const char *member :
         {"CreateVoNetworkIntf()", "ReleaseVoNetwork(VoNetworkIntf*)", "GetAppVersion()"})
        row("VoNetwork::"_s + QLatin1String(member));
    for (const char *member :
         {"signalGetOssSign(OSS_SIGN_INFO*)", "signalShortSTT(SHORT_STT_STATUS, QString)",
          "signalCreateSTTTask(STT_STATUS, QString)",
          "signalGetSTTResult(STT_STATUS, QString, QString, QString)",
          "signalTTSRet(TTS_STATUS, QString)", "signalLongTTSTask(LONG_TTS_STATUS, QString)",
          "signalGetLongTTSResult(LONG_TTS_STATUS, QString, QString, QString)",
          "signalGetLoginQrCodeEnd(LoginQrCode*)", "signalGetLoginQrCodeStatusEnd(UserInfo*)",
          "signalSendSmsEnd()", "signalSmsLoginEnd(UserInfo*)",
          "signalRefreshTokenEnd(long long, QDateTime)"})
        row("VoNetworkIntf::"_s + QLatin1String(member));
    for (const char *member : {"GetOssSign()",
                               "ShortSTT(QString, long long, QString)",
                               "CreateSTTTask(QString, long long, QString)",
                               "GetSTTTaskResult(QString, long long)",
                               "TTS(TTSParams*, bool, long long)",
                               "LongTTSTask(TTSParams*, long long)",
                               "LongTTSStatus(QString, long long)",
                               "DownloadLongTTSRet(QString, QString)",
                               "GetBgmList()",
                               "GetDubList()",
                               "GetUpdateInfo()",
                               "GetLoginQrCode()",
                               "GetLoginQrCodeStatus(QString)",
                               "SendSmsVerifyCode(QString)",
                               "SmsVerifyCodeLogin(QString, QString)",
                               "RefreshToken(long long)",
                               "runCommand(QString)",
                               "ConvertServerToClientDubType(QString)",
                               "ConvertAvtUrlToClient(QString)",
                               "DownloadAvt(QString, QString)",
                               "DownloadLoginQrCode(QString, QString)"})
        row("VoNetworker::"_s + QLatin1String(member));
    for (const char *slot :
         {"slotGetOssSign", "slotShortSTT", "slotCreateSTTTask", "slotGetSTTRet", "slotGetBgmList",
          "slotTTS", "slotLongTTSTask", "slotLongTTSTaskStatus", "slotGetDubList",
          "slotGetUpdateInfo", "slotGetLoginQrCode", "slotGetLoginQrCodeStatus",
          "slotSendSmsVerifyCode", "slotSmsLogin", "slotRefreshToken"}) {
        row("VoNetworker::%1Suc(QByteArray)"_s.arg(QLatin1String(slot)));
        row("VoNetworker::%1Fail(QByteArray)"_s.arg(QLatin1String(slot)));
    }
}

void TestExports::exportsEveryMemberOfItsClasses()
{
    static const QSet<QString> exported = exportedSymbols();
    QFETCH(QString, symbol);
    QVERIFY(exported.contains(symbol));
}

void TestExports::exportsNothingElse()
{
    static const QRegularExpression own(
        QStringLiteral("^((vtable|typeinfo|typeinfo name) for )?"
                       "(VoNetwork|VoNetworkIntf|VoNetworker)(::.*)?$"));
    QStringList others;
    const QSet<QString> exported = exportedSymbols();
    for (const QString &symbol : exported) {
        if (!own.match(symbol).hasMatch())
            others.append(symbol);
    }
    QCOMPARE(others, QStringList());
}

QTEST_GUILESS_MAIN(TestExports)
#include "tst_exports.moc"
