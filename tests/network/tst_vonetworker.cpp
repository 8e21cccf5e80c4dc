#include "tests/network/fakecommand.h"
#include "tests/network/localecodec.h"
#include "tests/network/networker.h"
#include "tests/network/servicetest.h"

#include <QMetaMethod>
#include <QTest>

#include <type_traits>

namespace {

static_assert(std::is_base_of_v<VoNetworkIntf, VoNetworker>);
static_assert(!std::is_abstract_v<VoNetworker>);
static_assert(std::is_default_constructible_v<VoNetworker>);
static_assert(!std::is_constructible_v<VoNetworker, QObject *>);
static_assert(std::is_same_v<decltype(&Networker::runCommand), QString (VoNetworker::*)(QString)>);
static_assert(std::is_same_v<decltype(&Networker::ConvertServerToClientDubType),
                             DubType (VoNetworker::*)(QString)>);
static_assert(
    std::is_same_v<decltype(&Networker::ConvertAvtUrlToClient), QString (VoNetworker::*)(QString)>);
static_assert(
    std::is_same_v<decltype(&Networker::DownloadAvt), QString (VoNetworker::*)(QString, QString)>);
static_assert(std::is_same_v<decltype(&Networker::DownloadLoginQrCode),
                             void (VoNetworker::*)(QString, QString)>);

// Classes derived from it may call these, and nobody else.
template <typename Object, typename Call>
constexpr bool allows(Call)
{
    return std::is_invocable_v<Call, Object &>;
}
template <typename Call>
constexpr bool isProtected(Call call)
{
    return allows<Networker>(call) && !allows<VoNetworker>(call);
}
static_assert(isProtected([](auto &self) -> decltype(void(self.runCommand(QString()))) {}));
static_assert(
    isProtected([](auto &self) -> decltype(void(self.ConvertServerToClientDubType(QString()))) {}));
static_assert(isProtected([](auto &self) -> decltype(void(self.ConvertAvtUrlToClient(QString()))) {
}));
static_assert(isProtected([](auto &self) -> decltype(void(self.DownloadAvt(QString(), QString()))) {
}));
static_assert(isProtected(
    [](auto &self) -> decltype(void(self.DownloadLoginQrCode(QString(), QString()))) {}));

static_assert(sizeof(VoNetworker) == sizeof(VoNetworkIntf) + 7 * sizeof(void *),
              "seven fields, each a pointer or of a pointer's size");

template <typename... Slots>
constexpr bool takeBytesByValue(Slots...)
{
    return (std::is_same_v<Slots, void (VoNetworker::*)(QByteArray)> && ...);
}
static_assert(takeBytesByValue(
    &Networker::slotGetOssSignSuc, &Networker::slotGetOssSignFail, &Networker::slotShortSTTSuc,
    &Networker::slotShortSTTFail, &Networker::slotCreateSTTTaskSuc,
    &Networker::slotCreateSTTTaskFail, &Networker::slotGetSTTRetSuc, &Networker::slotGetSTTRetFail,
    &Networker::slotGetBgmListSuc, &Networker::slotGetBgmListFail, &Networker::slotTTSSuc,
    &Networker::slotTTSFail, &Networker::slotLongTTSTaskSuc, &Networker::slotLongTTSTaskFail,
    &Networker::slotLongTTSTaskStatusSuc, &Networker::slotLongTTSTaskStatusFail,
    &Networker::slotGetDubListSuc, &Networker::slotGetDubListFail, &Networker::slotGetUpdateInfoSuc,
    &Networker::slotGetUpdateInfoFail, &Networker::slotGetLoginQrCodeSuc,
    &Networker::slotGetLoginQrCodeFail, &Networker::slotGetLoginQrCodeStatusSuc,
    &Networker::slotGetLoginQrCodeStatusFail, &Networker::slotSendSmsVerifyCodeSuc,
    &Networker::slotSendSmsVerifyCodeFail, &Networker::slotSmsLoginSuc,
    &Networker::slotSmsLoginFail, &Networker::slotRefreshTokenSuc,
    &Networker::slotRefreshTokenFail));

} // namespace

/// What the networker is made of: its meta-object and its device-identifier command.
class TestVoNetworker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ServiceTest::initMain(); }

    void declaresItsSlotsInOrder();
    void declaresNothingElse();
    void cleansWhatACommandPrints_data();
    void cleansWhatACommandPrints();
    void readsWhatACommandPrintsInTheMachinesCodePage();
    void removesTheLastWordOfTheCommand_data();
    void removesTheLastWordOfTheCommand();
    void splitsACommandIntoItsArguments_data();
    void splitsACommandIntoItsArguments();
    void readsAllThatACommandPrints();
    void waitsForACommandToEnd();
    void yieldsNothingForACommandThatCannotRun_data();
    void yieldsNothingForACommandThatCannotRun();

private:
    /// What is read of @p command, a command line of vo-tool, that prints @p output.
    static QString printed(const QByteArray &output, const QString &command)
    {
        const FakeCommand tool("vo-tool"_s, output);
        return read(command);
    }

    static QString read(const QString &command)
    {
        const LogCapture log;
        const QString text = Networker().runCommand(command);
        return log.lines().isEmpty() ? text : "logged: "_s + log.lines().first().text;
    }
};

void TestVoNetworker::declaresItsSlotsInOrder()
{
    const QMetaObject &meta = VoNetworker::staticMetaObject;
    QStringList declared;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Protected);
        QCOMPARE(method.typeName(), "void");
        declared.append(QString::fromLatin1(method.methodSignature()) + QLatin1Char(' ')
                        + QString::fromLatin1(method.parameterNames().join(',')));
    }
    QStringList expected;
    for (const char *name :
         {"slotGetOssSign", "slotShortSTT", "slotCreateSTTTask", "slotGetSTTRet", "slotGetBgmList",
          "slotTTS", "slotLongTTSTask", "slotLongTTSTaskStatus", "slotGetDubList",
          "slotGetUpdateInfo", "slotGetLoginQrCode", "slotGetLoginQrCodeStatus",
          "slotSendSmsVerifyCode", "slotSmsLogin", "slotRefreshToken"})
        expected << "%1Suc(QByteArray) jsonStr"_s.arg(QLatin1String(name))
                 << "%1Fail(QByteArray) failInfo"_s.arg(QLatin1String(name));
    QCOMPARE(declared, expected);
}

void TestVoNetworker::declaresNothingElse()
{
    const QMetaObject &meta = VoNetworker::staticMetaObject;
    QCOMPARE(meta.className(), "VoNetworker");
    QCOMPARE(meta.superClass(), &VoNetworkIntf::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    QCOMPARE(meta.classInfoCount(), 0);
    QCOMPARE(meta.constructorCount(), 0);
}

void TestVoNetworker::cleansWhatACommandPrints_data()
{
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<QString>("cleaned");
    const auto row = [](const char *title, const char *output, const char *cleaned) {
        QTest::newRow(title) << QByteArray(output) << QString::fromUtf8(cleaned);
    };
    row("a title and a value",
        "UUID                                  \r\r\n4C4C4544-0042-3510  \r\r\n\r\r\n",
        "4C4C4544-0042-3510");
    row("nothing", "", "");
    row("the title alone", "UUID\r\n", "");
    row("blank lines alone", "\r\n \t \n", "");
    row("the title in any letter case", "uuidUUIDUuIda", "a");
    row("the title everywhere", "xUUIDyuuidz uuid 1uuid", "xyz 1");
    row("a title that forms by removal stays", "uuUUIDid", "uuid");
    row("a title across lines stays", "uu\nid", "uuid");
    row("a title across lines of the other kind stays", "uu\rid", "uuid");
    row("lines are joined without a blank", "a\nb\r\nc\rd", "abcd");
    row("runs of blanks become one", "  a \t b \v c\f ", "a b c");
    row("another script", "值 é UUID", "值 é");
    row("no-break blanks are blanks",
        "\xc2\xa0"
        "a\xc2\xa0\xc2\xa0"
        "b",
        "a b");
}

void TestVoNetworker::cleansWhatACommandPrints()
{
    QFETCH(QByteArray, output);
    QFETCH(QString, cleaned);
    const LocaleCodec utf8("UTF-8");
    QCOMPARE(printed(output, "vo-tool csproduct get uuid"_s), cleaned);
}

void TestVoNetworker::readsWhatACommandPrintsInTheMachinesCodePage()
{
    const LocaleCodec western("windows-1252");
    QCOMPARE(printed("caf\xe9", "vo-tool x"_s), "café"_s);
}

void TestVoNetworker::removesTheLastWordOfTheCommand_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("cleaned");
    QTest::newRow("the last of several") << "vo-tool one two"_s
                                         << "one vo-tool"_s;
    QTest::newRow("the command itself") << "vo-tool"_s
                                        << "one two"_s;
    QTest::newRow("in other letters") << "vo-tool TWO"_s
                                      << "one vo-tool"_s;
    QTest::newRow("no characters of a pattern") << "vo-tool o.e"_s
                                                << "one two vo-tool"_s;
    // A blank at the end leaves an empty last word, which is nowhere.
    QTest::newRow("a blank at the end") << "vo-tool two "_s
                                        << "one two vo-tool"_s;
    // Words end at blanks only, whatever quotation marks say.
    QTest::newRow("half a quotation") << R"(vo-tool "one two")"_s
                                      << "one two vo-tool"_s;
}

void TestVoNetworker::removesTheLastWordOfTheCommand()
{
    QFETCH(QString, command);
    QFETCH(QString, cleaned);
    QCOMPARE(printed("one two vo-tool", command), cleaned);
}

void TestVoNetworker::splitsACommandIntoItsArguments_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("arguments");
    QTest::newRow("none") << "vo-tool"_s
                          << ""_s;
    QTest::newRow("several") << "vo-tool a b c z"_s
                             << "[a][b][c][]"_s;
    QTest::newRow("quotation marks keep blanks") << R"(vo-tool "a b" c z)"_s
                                                 << "[a b][c][]"_s;
    QTest::newRow("quotation marks in a word") << R"(vo-tool a" "b z)"_s
                                               << "[a b][]"_s;
    QTest::newRow("three quotation marks are one") << R"(vo-tool """a""" z)"_s
                                                   << R"(["a"][])"_s;
    QTest::newRow("a call of PowerShell")
        << "vo-tool -Command (Get-CimInstance Win32_ComputerSystemProduct).UUID"_s
        << "[-Command][(Get-CimInstance][]"_s;
    QTest::newRow("runs of blanks") << "vo-tool   a    b z"_s
                                    << "[a][b][]"_s;
    QTest::newRow("nothing is expanded") << "vo-tool $HOME *;b|c z"_s
                                         << "[$HOME][*;b|c][]"_s;
}

void TestVoNetworker::splitsACommandIntoItsArguments()
{
    QFETCH(QString, command);
    QFETCH(QString, arguments);
    const FakeCommand tool("vo-tool"_s);
    QCOMPARE(read(command), arguments);
}

void TestVoNetworker::readsAllThatACommandPrints()
{
    // More than a pipe holds at once, and nothing of what goes to standard error.
    const QByteArray output = QByteArray("0123456789\n").repeated(20000);
    QCOMPARE(printed(output, "vo-tool x"_s), "0123456789"_s.repeated(20000));
}

void TestVoNetworker::waitsForACommandToEnd()
{
    // The command goes on after its output is closed: the end of that is not its own.
    const FakeCommand tool("vo-tool"_s, "a\n");
    QCOMPARE(Networker().runCommand("vo-tool x"_s), "a"_s);
    QVERIFY(tool.hasEnded());
}

void TestVoNetworker::yieldsNothingForACommandThatCannotRun_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("unknown") << "vo-no-such-tool get uuid"_s;
    QTest::newRow("a path to nothing") << "/no/such/folder/tool uuid"_s;
    QTest::newRow("a folder") << "/ uuid"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << "   "_s;
    QTest::newRow("quotation marks alone") << R"("")"_s;
}

void TestVoNetworker::yieldsNothingForACommandThatCannotRun()
{
    QFETCH(QString, command);
    QCOMPARE(printed("never", command), QString());
}

QTEST_GUILESS_MAIN(TestVoNetworker)
#include "tst_vonetworker.moc"
