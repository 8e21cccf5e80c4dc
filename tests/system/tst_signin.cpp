#include "tests/support/patience.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"
#include "tests/system/terminal.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <limits>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A picture of 21 modules a side that looks like a code to whoever knows no more of one than its
// corners. Modules are two pixels wide, in a light margin of eight.
constexpr int side = 21;

const QString codeName = QStringLiteral("code.png");

bool isDark(int column, int row)
{
    const bool isFirstEdge = row == 0 && column < 8;
    return isFirstEdge
               ? column < 7
               : column == 0 || row == side - 1 || (column * row) % 3 == 1 || column == side - 1;
}

QByteArray png(const QImage &image)
{
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray codePicture()
{
    QImage image(2 * side + 16, 2 * side + 16, QImage::Format_Mono);
    image.fill(1);
    for (int y = 0; y < 2 * side; ++y) {
        for (int x = 0; x < 2 * side; ++x) {
            if (isDark(x / 2, y / 2))
                image.setPixel(8 + x, 8 + y, 0);
        }
    }
    return png(image);
}

#ifdef __SANITIZE_ADDRESS__
constexpr qint64 mostMemory = std::numeric_limits<qint64>::max(); // the sanitiser takes its own
#else
constexpr qint64 mostMemory = 150000000; // bytes
#endif

quint32 checksum(const QByteArray &bytes)
{
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= uchar(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
    }
    return ~sum;
}

QByteArray number(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

// A text of 7 million letters, which take a few thousand bytes of a PNG file.
QByteArray packedText()
{
    const QByteArray body =
        QByteArray("zTXtkey\0\0", 9) + qCompress(QByteArray(7000000, 'a')).mid(4);
    return number(quint32(body.size() - 4)) + body + number(checksum(body));
}

// What the largest program so far that has ended, of those that were started here, had in memory.
qint64 largestProgram()
{
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_maxrss * 1024;
}

// As the picture should look on the terminal: 29 by 29 modules, two in a character.
QStringList drawnCode()
{
    const auto module = [](int column, int row) {
        return column >= 4 && row >= 4 && column < side + 4 && row < side + 4
               && isDark(column - 4, row - 4);
    };
    QStringList lines;
    for (int row = 0; row < side + 8; row += 2) {
        QString line;
        for (int column = 0; column < side + 8; ++column)
            line += QStringLiteral(" ▀▄█").at((module(column, row) ? 1 : 0)
                                              + (module(column, row + 1) ? 2 : 0));
        lines.append(line);
    }
    return lines;
}

QString localText(const QDateTime &time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString utcText(const QDateTime &time) { return time.toUTC().toString(Qt::ISODate); }

// The service says whole seconds.
QDateTime in(int seconds)
{
    const QDateTime now = QDateTime::currentDateTime();
    return QDateTime::fromSecsSinceEpoch(now.toSecsSinceEpoch() + seconds);
}

QJsonObject user(const QDateTime &tokenExpiry, const QDateTime &refreshExpiry)
{
    return {
        {QStringLiteral("base"),
         QJsonObject{{QStringLiteral("user_id"), 17},
                     {QStringLiteral("nickname"), QStringLiteral("Zoë")},
                     {QStringLiteral("header_url"), QStringLiteral("https://a.example/z.png")}}},
        {QStringLiteral("token"),
         QJsonObject{{QStringLiteral("token"), 9007199254740992.0},
                     {QStringLiteral("refresh_token"), 5005},
                     {QStringLiteral("token_expire_time"), localText(tokenExpiry)},
                     {QStringLiteral("refresh_expire_time"), localText(refreshExpiry)}}}};
}

QJsonObject session(const QDateTime &tokenExpiry, const QDateTime &refreshExpiry,
                    const char *token = "9007199254740992")
{
    return {{QStringLiteral("userId"), QStringLiteral("17")},
            {QStringLiteral("nickname"), QStringLiteral("Zoë")},
            {QStringLiteral("token"), QString::fromLatin1(token)},
            {QStringLiteral("refreshToken"), QStringLiteral("5005")},
            {QStringLiteral("tokenExpires"), utcText(tokenExpiry)},
            {QStringLiteral("sessionExpires"), utcText(refreshExpiry)}};
}

QByteArray code(const QDateTime &expiry,
                const QString &address = QStringLiteral(SERVICE_BASE_ADDRESS "/code.png"))
{
    return Answers::envelope({{QStringLiteral("url"), address},
                              {QStringLiteral("expire_time"), expiry.toSecsSinceEpoch()},
                              {QStringLiteral("business_code"), QStringLiteral("attempt-7")}});
}

QByteArray status(int status) { return Answers::envelope({{QStringLiteral("status"), status}}); }

QByteArray confirmed(const QJsonObject &user)
{
    return Answers::envelope({{QStringLiteral("status"), 1}, {QStringLiteral("user_info"), user}});
}

QByteArray renewed(int token, const QDateTime &expiry)
{
    return Answers::envelope(
        {{QStringLiteral("token"), token}, {QStringLiteral("expire_time"), localText(expiry)}});
}

QByteArray speech() { return Answers::one("audio", "UklGRg=="); }

QByteArray bodyOf(const QByteArray &request)
{
    return request.mid(request.indexOf("\r\n\r\n") + 4);
}

QByteArray pathOf(const QByteArray &request) { return request.split(' ').value(1); }

QByteArray tokenIn(const QByteArray &request)
{
    for (const QByteArray &line : request.split('\n')) {
        if (line.toLower().startsWith("authorization:"))
            return line.mid(line.indexOf(':') + 1).trimmed();
    }
    return {};
}

// Of the file's permissions, what chmod understands.
int modeOf(const QString &path)
{
    struct stat info = {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 07777) : -1;
}

QByteArray lastLine(const QByteArray &text) { return text.trimmed().split('\n').last(); }

QByteArray signInAgain()
{
    return "sign in again: vospeak login --qr, or vospeak login --sms NUMBER\n";
}

} // namespace

Q_DECLARE_METATYPE(QList<QByteArray>)

/// How vospeak signs in, keeps the session and uses it.
class TestSignIn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
        QVERIFY(m_clearServer.start());
        m_clearServer.answer(ScriptedServer::reply(codePicture()));
        TestFolder::write(m_folder.filePath(codeName), codePicture());
    }
    void init()
    {
        m_server.reset();
        m_home.reset();
        m_home.reset(new Home);
    }

    void aMessageBringsASession()
    {
        const QDateTime tokenExpiry = in(3600);
        const QDateTime refreshExpiry = in(7200);
        const Outcome outcome = signInBySms(user(tokenExpiry, refreshExpiry));
        QCOMPARE(QString::fromUtf8(outcome.out),
                 QStringLiteral("signed in as Zoë until %1\n").arg(localText(refreshExpiry)));
        QCOMPARE(outcome.err,
                 QByteArray("If vo-localservice printed a code for +44 7700, enter it:\n"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(m_home->session(), session(tokenExpiry, refreshExpiry));
        const QList<QByteArray> requests = m_server.requests();
        QCOMPARE(requests.size(), 2);
        QCOMPARE(QJsonDocument::fromJson(bodyOf(requests.at(0))).object(),
                 QJsonObject({{QStringLiteral("phone"), QStringLiteral("+44 7700")},
                              {QStringLiteral("scene"), 1}}));
        QCOMPARE(QJsonDocument::fromJson(bodyOf(requests.at(1))).object(),
                 QJsonObject({{QStringLiteral("phone"), QStringLiteral("+44 7700")},
                              {QStringLiteral("verify"), QStringLiteral("123456")}}));
    }

    void aScannedCodeBringsASession()
    {
        const QDateTime tokenExpiry = in(3600);
        const QDateTime refreshExpiry = in(7200);
        m_server.answer(code(in(3600)));
        m_server.answer(ScriptedServer::reply(codePicture()));
        m_server.answer(status(0));
        m_server.answer(confirmed(user(tokenExpiry, refreshExpiry)));
        const Outcome outcome = run(arguments("login --qr"));
        QCOMPARE(QString::fromUtf8(outcome.out),
                 QStringLiteral("signed in as Zoë until %1\n").arg(localText(refreshExpiry)));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(m_home->session(), session(tokenExpiry, refreshExpiry));
        QCOMPARE(m_server.requests().size(), 4);
        QVERIFY(pathOf(m_server.requests().at(3)).endsWith("?business_code=attempt-7"));
    }

    void theCodeIsDrawnInBlocksWithItsMargin()
    {
        signInByCode();
        QStringList expected = drawnCode();
        expected << QStringLiteral(
            "Open the sign-in page that vo-localservice has just printed in a browser here.")
                 << QStringLiteral("If the browser warns, have it trust %1:")
                        .arg(QStringLiteral(TEST_AUTHORITY))
                 << QStringLiteral("%1/ says how. The code is in %2\n")
                        .arg(QStringLiteral(SERVICE_BASE_ADDRESS), m_home->picture());
        QCOMPARE(QString::fromUtf8(m_outcome.err), expected.join(QLatin1Char('\n')));
        QFile picture(m_home->picture());
        QVERIFY(picture.open(QIODevice::ReadOnly));
        QCOMPARE(picture.readAll(), codePicture());
    }

    void aPictureThatUnpacksToFarMoreIsNotUnpacked_data()
    {
        QTest::addColumn<QByteArray>("picture");
        QTest::addColumn<bool>("isShown");
        const int afterTheHead = 33; // the signature and the first chunk
        QTest::newRow("texts") << codePicture().insert(afterTheHead, packedText().repeated(16))
                               << true;
        QImage large(20000, 20000, QImage::Format_Mono);
        large.fill(1);
        QTest::newRow("pixels") << png(large) << false;
        QTest::newRow("a long file") << codePicture() + QByteArray(2000000, 'x') << false;
    }
    void aPictureThatUnpacksToFarMoreIsNotUnpacked()
    {
        QFETCH(const QByteArray, picture);
        QFETCH(const bool, isShown);
        m_server.answer(code(in(3600)));
        m_server.answer(ScriptedServer::reply(picture));
        m_server.answer(confirmed(user(in(3600), in(7200))));
        const Outcome outcome = run(arguments("login --qr"));
        QCOMPARE(outcome.status, isShown ? 0 : 1);
        if (!isShown)
            QCOMPARE(
                outcome.err,
                QByteArray("vospeak: no usable picture of the code came or could be written\n"));
        const qint64 most = largestProgram();
        QVERIFY2(most < mostMemory, QByteArray::number(most).constData());
    }

    void onATerminalTheCodeIsBlackOnWhite()
    {
        Terminal terminal;
        QCOMPARE(signInOn(terminal, {}), 0);
        const QByteArray shown = terminal.read();
        QStringList expected;
        const QStringList lines = drawnCode();
        for (const QString &line : lines)
            expected << QStringLiteral("\x1b[38;5;16;48;5;231m%1\x1b[0m").arg(line);
        QCOMPARE(QString::fromUtf8(shown).split(QLatin1Char('\n')).mid(0, lines.size()), expected);
    }

    void aTerminalThatIsTooNarrowForTheCodeIsToldSo()
    {
        Terminal terminal(28);
        QCOMPARE(signInOn(terminal, {}), 0);
        const QByteArrayList lines = Terminal::linesOf(terminal.read());
        QCOMPARE(lines.at(0),
                 QByteArray("The code needs a terminal of 29 columns; or see --open."));
        Terminal wideEnough(29);
        QCOMPARE(signInOn(wideEnough, {}), 0);
        QVERIFY(wideEnough.read().contains("\xe2\x96\x88"));
    }

    void theUserDecidesWhetherTheCodeIsColoured_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<bool>("isColoured");
        QTest::newRow("auto") << arguments("--color auto") << QByteArray() << true;
        QTest::newRow("never") << arguments("--color never") << QByteArray() << false;
        QTest::newRow("NO_COLOR") << QStringList() << QByteArray("1") << false;
        QTest::newRow("NO_COLOR, always") << arguments("--color always") << QByteArray("1") << true;
    }
    void theUserDecidesWhetherTheCodeIsColoured()
    {
        QFETCH(const QStringList, options);
        QFETCH(const QByteArray, variable);
        QFETCH(const bool, isColoured);
        qputenv("NO_COLOR", variable);
        Terminal terminal;
        const int status = signInOn(terminal, options);
        qunsetenv("NO_COLOR");
        QCOMPARE(status, 0);
        QCOMPARE(terminal.read().contains("\x1b["), isColoured);
    }

    void thePictureOfTheCodeIsOpened()
    {
        const QTemporaryDir folder;
        TestFolder::write(folder.filePath(QStringLiteral("xdg-open")),
                          "#!/bin/sh\necho \"$1\" >\"$0.opened\"\n");
        QFile::setPermissions(folder.filePath(QStringLiteral("xdg-open")),
                              QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);
        signInByCode(arguments("--open"));
        qputenv("PATH", path);
        QCOMPARE(m_outcome.status, 0);
        TRY_COMPARE(TestFolder::contents(folder.filePath(QStringLiteral("xdg-open.opened"))),
                    m_home->picture().toUtf8() + '\n');
    }

    void whoAmITellsTheSession()
    {
        const QDateTime expiry = in(7200);
        m_home->writeSession(session(in(3600), expiry));
        const Outcome outcome = vospeak(arguments("whoami"));
        QCOMPARE(QString::fromUtf8(outcome.out),
                 QStringLiteral("signed in as Zoë until %1\n").arg(localText(expiry)));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(m_server.requests().size(), 0);
    }

    void jsonSaysWhoSignedInAndNoToken()
    {
        const QDateTime tokenExpiry = in(3600);
        const QDateTime refreshExpiry = in(7200);
        const Outcome outcome = signInBySms(user(tokenExpiry, refreshExpiry), arguments("--json"));
        QVERIFY2(outcome.out.endsWith("}\n") && outcome.out.count('\n') == 1,
                 outcome.out.constData());
        QCOMPARE(
            QJsonDocument::fromJson(outcome.out).object(),
            QJsonObject({{QStringLiteral("userId"), 17},
                         {QStringLiteral("nickname"), QStringLiteral("Zoë")},
                         {QStringLiteral("pictureUrl"), QStringLiteral("https://a.example/z.png")},
                         {QStringLiteral("tokenExpires"), utcText(tokenExpiry)},
                         {QStringLiteral("sessionExpires"), utcText(refreshExpiry)}}));
    }

    void whatIsKeptIsForTheUserOnly()
    {
        const mode_t before = umask(0);
        signInByCode();
        umask(before);
        QCOMPARE(m_outcome.status, 0);
        QCOMPARE(modeOf(m_home->sessionFile()), 0600);
        QCOMPARE(modeOf(m_home->settings()), 0700);
        QCOMPARE(modeOf(m_home->pictureFolder()), 0700);
        QCOMPARE(modeOf(m_home->picture()), 0600);
        QCOMPARE(QDir(m_home->settings())
                     .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{QStringLiteral("session.json")});
    }

    void anOlderSessionAndFolderThatOthersCouldReadBecomePrivate()
    {
        m_home->writeSession({});
        QCOMPARE(::chmod(QFile::encodeName(m_home->sessionFile()).constData(), 0644), 0);
        QCOMPARE(::chmod(QFile::encodeName(m_home->settings()).constData(), 0755), 0);
        QCOMPARE(signInBySms(user(in(3600), in(7200))).status, 0);
        QCOMPARE(modeOf(m_home->sessionFile()), 0600);
        QCOMPARE(modeOf(m_home->settings()), 0700);
    }

    void aPictureIsTakenFromHttpsOnly_data()
    {
        QTest::addColumn<QString>("address");
        const QString data = QStringLiteral("data:image/png;base64,")
                             + QString::fromLatin1(codePicture().toBase64());
        QTest::newRow("a file") << QStringLiteral("file://") + m_folder.filePath(codeName);
        QTest::newRow("data") << data;
        QTest::newRow("data with quotation marks")
            << data + QStringLiteral("#\" ,saveDir= \"https://localhost/c.png");
        QTest::newRow("in the clear") << m_clearServer.address(QStringLiteral("/code.png"));
    }
    void aPictureIsTakenFromHttpsOnly()
    {
        QFETCH(const QString, address);
        m_server.answer(code(in(3600), address));
        m_server.answer(confirmed(user(in(3600), in(7200))));
        const Outcome outcome = run(arguments("login --qr"));
        QCOMPARE(outcome.err,
                 QByteArray("vospeak: the service sent no usable address of the code's picture\n"));
        QCOMPARE(outcome.status, 1);
        QCOMPARE(m_server.requests().size(), 1);
    }

    void aSignInThatFailsLeavesNoSession_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<QByteArray>("problem");
        QTest::addColumn<int>("status");
        smsRows();
        codeRows();
    }
    void aSignInThatFailsLeavesNoSession()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const QByteArray, problem);
        QFETCH(const int, status);
        for (const QByteArray &answer : answers)
            m_server.answer(answer);
        Program program(withAuthority(command));
        program.type("123456\n");
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.status, status);
        QCOMPARE(outcome.out, QByteArray());
        QCOMPARE(lastLine(outcome.err), "vospeak: " + problem);
        QVERIFY2(!outcome.err.contains("libpng"), outcome.err.constData());
        QVERIFY(!QFile::exists(m_home->sessionFile()));
    }

    void anExpiredCodeIsToldAsJson()
    {
        m_server.answer(code(in(-5)));
        m_server.answer(ScriptedServer::reply(codePicture()));
        m_server.answer(status(0));
        const Outcome outcome = run(arguments("login --qr --json"));
        QCOMPARE(lastLine(outcome.err),
                 QByteArray("{\"error\":{\"kind\":\"expired\",\"message\":\"the code has expired\","
                            "\"status\":1}}"));
    }

    void anEmptyLineOrTheEndOfTheInputIsNoCode_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::newRow("end") << QByteArray();
        QTest::newRow("empty line") << QByteArray("\n");
        QTest::newRow("blanks") << QByteArray("  \t\n");
    }
    void anEmptyLineOrTheEndOfTheInputIsNoCode()
    {
        QFETCH(const QByteArray, input);
        m_server.answer(Answers::envelope());
        Program program(withAuthority(arguments("login --sms 1")));
        program.type(input);
        program.endInput();
        const Outcome outcome = program.outcome();
        QCOMPARE(outcome.status, 1);
        QCOMPARE(lastLine(outcome.err), QByteArray("vospeak: no code was entered"));
        QCOMPARE(m_server.requests().size(), 1);
    }

    void aCodeNeedsNoLineBreakAtTheEndOfTheInput()
    {
        m_server.answer(Answers::envelope());
        m_server.answer(Answers::envelope(user(in(3600), in(7200))));
        Program program(withAuthority(arguments("login --sms 1")));
        program.type(" 123456 ");
        program.endInput();
        QCOMPARE(program.outcome().status, 0);
        QVERIFY(bodyOf(m_server.requests().value(1)).contains("\"123456\""));
    }

    void aSignalEndsTheWaitForTheUserAtOnce_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QList<QByteArray>>("answers");
        QTest::addColumn<QByteArray>("shown");
        const QByteArray picture = ScriptedServer::reply(codePicture());
        QTest::newRow("to type") << arguments("login --sms 1")
                                 << QList<QByteArray>{Answers::envelope()}
                                 << QByteArray("enter it:\n");
        QTest::newRow("to scan") << arguments("login --qr")
                                 << QList<QByteArray>{code(in(3600)), picture, status(0)}
                                 << QByteArray("login_qr_code.png\n");
    }
    void aSignalEndsTheWaitForTheUserAtOnce()
    {
        QFETCH(const QStringList, command);
        QFETCH(const QList<QByteArray>, answers);
        QFETCH(const QByteArray, shown);
        for (const int number : {SIGINT, SIGTERM}) {
            m_server.reset();
            for (const QByteArray &answer : answers)
                m_server.answer(answer);
            Program program(withAuthority(command));
            TRY_VERIFY(program.err().endsWith(shown));
            TRY_VERIFY(m_server.requests().size() >= answers.size());
            program.signal(number);
            const Outcome outcome = program.outcome();
            QCOMPARE(outcome.status, 128 + number);
            QCOMPARE(outcome.out, QByteArray());
            QVERIFY2(outcome.err.endsWith(shown), outcome.err.constData());
            QVERIFY(!QFile::exists(m_home->sessionFile()));
        }
    }

    void aFolderForThePictureThatCannotBeUsedIsToldAtOnce_data()
    {
        QTest::addColumn<QString>("shell");
        QTest::newRow("a file") << QStringLiteral("touch VoTTS");
        QTest::newRow("a link") << QStringLiteral("mkdir other; ln -s other VoTTS");
        QTest::newRow("a link to nothing") << QStringLiteral("ln -s nowhere VoTTS");
        QTest::newRow("a folder in the picture's place")
            << QStringLiteral("mkdir -p VoTTS/login_qr_code.png");
        if (geteuid() == 0)
            QTest::newRow("another user's") << QStringLiteral("mkdir VoTTS; chown 1234 VoTTS");
    }
    void aFolderForThePictureThatCannotBeUsedIsToldAtOnce()
    {
        QFETCH(const QString, shell);
        QProcess setUp;
        setUp.setWorkingDirectory(QFileInfo(m_home->pictureFolder()).path());
        setUp.start(QStringLiteral("sh"), {QStringLiteral("-ec"), shell});
        QVERIFY(setUp.waitForFinished(patienceMs) && setUp.exitCode() == 0);
        const Outcome outcome = run(arguments("login --qr"));
        QCOMPARE(outcome.status, 1);
        QVERIFY2(isOneLine(outcome.err) && outcome.err.contains("VoTTS"), outcome.err.constData());
        QCOMPARE(m_server.requests().size(), 0);
    }

    void settingsThatCannotBeWrittenAreToldBeforeTheServiceIsAsked_data()
    {
        QTest::addColumn<bool>("isFile");
        QTest::newRow("a file in the folder's place") << true;
        QTest::newRow("a folder in the file's place") << false;
    }
    void settingsThatCannotBeWrittenAreToldBeforeTheServiceIsAsked()
    {
        QFETCH(const bool, isFile);
        QVERIFY(
            QDir().mkpath(isFile ? QFileInfo(m_home->settings()).path() : m_home->sessionFile()));
        QFile file(m_home->settings());
        QVERIFY(!isFile || file.open(QIODevice::WriteOnly));
        for (const char *command : {"login --qr", "login --sms 1"}) {
            const Outcome outcome = run(arguments(command));
            QCOMPARE(outcome.status, 1);
            QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        }
        QCOMPARE(m_server.requests().size(), 0);
    }

    void withoutASessionTheUserIsToldToSignInFirst()
    {
        for (const QStringList &command : {say(), recognize()}) {
            const Outcome outcome = run(command);
            QCOMPARE(outcome.status, 5);
            QCOMPARE(outcome.err, QByteArray("vospeak: sign in first: vospeak login --qr, or "
                                             "vospeak login --sms NUMBER\n"));
        }
        QCOMPARE(m_server.requests().size(), 0);
    }

    void aBrokenSessionIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no JSON") << QByteArray("token=5");
        QTest::newRow("cut short") << QByteArray("{\"token\": \"5\"");
        QTest::newRow("another document") << QByteArray("[1, 2]");
        const auto row = [](const char *key, const QJsonValue &value) {
            QJsonObject broken = session(in(3600), in(7200));
            broken.insert(QString::fromLatin1(key), value);
            QTest::addRow("%s is %s", key, value.isUndefined() ? "missing" : "wrong")
                << QJsonDocument(broken).toJson();
        };
        for (const char *key : {"token", "refreshToken", "tokenExpires", "sessionExpires"}) {
            row(key, QJsonValue(QJsonValue::Undefined));
            row(key, QStringLiteral("nonsense"));
        }
    }
    void aBrokenSessionIsNotUsed()
    {
        QFETCH(const QByteArray, contents);
        QVERIFY(QDir().mkpath(m_home->settings()));
        QFile file(m_home->sessionFile());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
        file.close();
        const Outcome outcome = run(say());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.err, "vospeak: the session cannot be read; " + signInAgain());
        QCOMPARE(m_server.requests().size(), 0);
    }

    void aSessionThatHasExpiredIsNotUsed()
    {
        m_home->writeSession(session(in(3600), in(-1)));
        const Outcome outcome = run(say());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.err, "vospeak: the session has expired; " + signInAgain());
        QCOMPARE(m_server.requests().size(), 0);
    }

    void aTokenThatIsGoodForLongerThanAMinuteIsUsedAsItIs()
    {
        m_home->writeSession(session(in(120), in(7200)));
        m_server.answer(speech());
        const Outcome outcome = run(say());
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
        QCOMPARE(m_server.requests().size(), 1);
        QCOMPARE(tokenIn(m_server.requests().at(0)), QByteArray("Bearer 9007199254740992"));
    }

    void aTokenThatExpiresWithinAMinuteIsRenewedAndKept_data()
    {
        QTest::addColumn<int>("left");
        QTest::newRow("soon") << 50;
        QTest::newRow("now") << 0;
        QTest::newRow("expired") << -3600;
    }
    void aTokenThatExpiresWithinAMinuteIsRenewedAndKept()
    {
        QFETCH(const int, left);
        const QDateTime tokenExpiry = in(1800);
        const QDateTime refreshExpiry = in(7200);
        m_home->writeSession(session(in(left), refreshExpiry));
        m_server.answer(renewed(8008, tokenExpiry));
        m_server.answer(speech());
        const mode_t before = umask(0);
        const Outcome outcome = run(say());
        umask(before);
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
        const QList<QByteArray> requests = m_server.requests();
        QCOMPARE(requests.size(), 2);
        QVERIFY(pathOf(requests.at(0)).endsWith("token/refresh?refresh_token=5005"));
        QCOMPARE(tokenIn(requests.at(1)), QByteArray("Bearer 8008"));
        QCOMPARE(m_home->session(), session(tokenExpiry, refreshExpiry, "8008"));
        QCOMPARE(modeOf(m_home->sessionFile()), 0600);
    }

    void aRenewalThatIsRefusedEndsIt_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::newRow("refused") << Answers::refusal(401, "no");
        QTest::newRow("no token") << Answers::envelope();
        QTest::newRow("HTTP error") << ScriptedServer::reply("", "503 Busy");
    }
    void aRenewalThatIsRefusedEndsIt()
    {
        QFETCH(const QByteArray, answer);
        const QJsonObject before = session(in(10), in(7200));
        m_home->writeSession(before);
        m_server.answer(answer);
        const Outcome outcome = run(say());
        QCOMPARE(outcome.status, 5);
        QCOMPARE(outcome.err, "vospeak: the session could not be renewed; " + signInAgain());
        QCOMPARE(m_server.requests().size(), 1);
        QCOMPARE(m_home->session(), before);
    }

    // The service gives tokens that live for less than a minute: each is good for one request.
    void aTaskThatOutlivesItsTokenGoesOnWithNewOnes()
    {
        m_home->writeSession(session(in(10), in(7200)));
        m_server.answer(renewed(1, in(20)));
        m_server.answer(Answers::task());
        m_server.answer(renewed(2, in(20)));
        m_server.answer(Answers::status("RUNNING"));
        m_server.answer(renewed(3, in(20)));
        m_server.answer(Answers::finishedRecognition());
        const Outcome outcome = run(recognize() + arguments("--long --json"));
        QCOMPARE(outcome.out, QByteArray("{\"text\":\"one two\"}\n"));
        QCOMPARE(outcome.status, 0);
        QByteArrayList tokens;
        for (const QByteArray &request : m_server.requests())
            tokens.append(tokenIn(request));
        QCOMPARE(tokens, QByteArrayList({"", "Bearer 1", "", "Bearer 2", "", "Bearer 3"}));
    }

    void aSessionThatWasGivenUpMeanwhileStaysGone()
    {
        m_home->writeSession(session(in(10), in(7200)));
        m_server.answer(renewed(8008, in(1800)));
        m_server.answer(speech());
        const auto connection = connect(&m_server, &ScriptedServer::requestReceived, this, [this] {
            if (m_server.requests().size() == 1)
                QFile::remove(m_home->sessionFile());
        });
        const Outcome outcome = run(say());
        disconnect(connection);
        QCOMPARE(outcome.status, 0);
        QVERIFY(!QFile::exists(m_home->sessionFile()));
    }

    void aTokenThatTheUserNamesWins()
    {
        m_home->writeSession(session(in(-10), in(-10)));
        m_server.answer(speech());
        QCOMPARE(run(say() + arguments("--token 4004")).status, 0);
        QCOMPARE(tokenIn(m_server.requests().value(0)), QByteArray("Bearer 4004"));
    }

    void sayingSomethingAnonymouslyNeedsNoSession()
    {
        m_server.answer(speech());
        const Outcome outcome = run(say() + arguments("--anonymous --json"));
        QCOMPARE(outcome.status, 0);
        QCOMPARE(QJsonDocument::fromJson(outcome.out).object(),
                 QJsonObject({{QStringLiteral("file"), audio()}, {QStringLiteral("bytes"), 4}}));
        QCOMPARE(tokenIn(m_server.requests().value(0)), QByteArray());
    }

    void signingOutForgetsTheSession()
    {
        m_home->writeSession(session(in(3600), in(7200)));
        const Outcome out = vospeak(arguments("logout"));
        QCOMPARE(out.status, 0);
        QCOMPARE(out.out, QByteArray("signed out\n"));
        QVERIFY(!QFile::exists(m_home->sessionFile()));
        const Outcome again = vospeak(arguments("logout"));
        QCOMPARE(again.status, 0);
        QCOMPARE(again.out, QByteArray("nobody was signed in\n"));
        QVERIFY(run(say()).err.contains("sign in first"));
    }

private:
    static void row(const char *name, const char *command, const QList<QByteArray> &answers,
                    const char *problem, int status)
    {
        QTest::newRow(name) << arguments(command) << answers << QByteArray(problem) << status;
    }

    static void smsRows()
    {
        const char *command = "login --sms 1";
        const char *refused = "the service refused: no";
        const char *unusable = "the service sent no usable session";
        row("message and code refused", command,
            {Answers::refusal(429, "no"), Answers::refusal(401, "no")}, refused, 5);
        row("code refused", command, {Answers::envelope(), Answers::refusal(401, "no")}, refused,
            5);
        row("no JSON", command, {Answers::envelope(), ScriptedServer::reply("<html>")},
            "the service sent no usable answer", 1);
        row("nobody", command, {Answers::envelope(), Answers::envelope()}, unusable, 1);
        row("times that are none", command,
            {Answers::envelope(), Answers::envelope(user(QDateTime(), QDateTime()))}, unusable, 1);
    }

    static void codeRows()
    {
        const char *command = "login --qr";
        const char *refused = "the service refused: no";
        const char *missing = "the server answered: content not found";
        const char *noPicture = "no usable picture of the code came or could be written";
        const char *expired = "the code has expired";
        const QByteArray picture = ScriptedServer::reply(codePicture());
        row("no scannable code", command, {Answers::refusal(5, "no")}, refused, 5);
        row("picture is missing", command,
            {code(in(3600)), ScriptedServer::reply("", "404 Not Found")}, missing, 5);
        row("picture is a page that says that it is missing", command,
            {code(in(3600)), ScriptedServer::reply(codePicture(), "404 Not Found")}, missing, 5);
        row("picture is no PNG", command, {code(in(3600)), ScriptedServer::reply("<html>")},
            noPicture, 1);
        row("picture is cut short", command,
            {code(in(3600)), ScriptedServer::reply(codePicture().left(40))}, noPicture, 1);
        row("code has expired already", command, {code(in(-5)), picture, status(0)}, expired, 1);
        row("nobody confirms", command, {code(in(2)), picture, status(0)}, expired, 1);
        row("question refused", command, {code(in(2)), picture, Answers::refusal(5, "no")}, expired,
            1);
        row("question not answered", command, {code(in(2)), picture, ""},
            "no answer from " SERVICE_BASE_ADDRESS ": the connection was closed", 3);
        row("somebody without tokens", command, {code(in(3600)), picture, confirmed({})},
            "the service sent no usable session", 1);
    }

    Outcome signInBySms(const QJsonObject &user, const QStringList &further = {})
    {
        m_server.answer(Answers::envelope());
        m_server.answer(Answers::envelope(user));
        Program program(withAuthority(QStringList{QStringLiteral("login"), QStringLiteral("--sms"),
                                                  QStringLiteral("+44 7700")}
                                      + further));
        program.type("123456\n");
        return program.outcome();
    }

    // The exit status.
    int signInOn(const Terminal &terminal, const QStringList &options)
    {
        m_server.reset();
        m_server.answer(code(in(3600)));
        m_server.answer(ScriptedServer::reply(codePicture()));
        m_server.answer(confirmed(user(in(3600), in(7200))));
        Program program(withAuthority(arguments("login --qr") + options), terminal.name());
        return program.outcome().status;
    }

    void signInByCode(const QStringList &options = {})
    {
        m_server.answer(code(in(3600)));
        m_server.answer(ScriptedServer::reply(codePicture()));
        m_server.answer(confirmed(user(in(3600), in(7200))));
        m_outcome = run(arguments("login --qr") + options);
    }

    QString audio() const { return m_folder.filePath(QStringLiteral("audio.wav")); }
    QStringList say() const
    {
        return {QStringLiteral("say"), QStringLiteral("hello"), QStringLiteral("-o"), audio()};
    }
    static QStringList recognize() { return arguments("recognize https://a.example/b.wav"); }

    static QStringList withAuthority(const QStringList &command)
    {
        return command + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)};
    }
    static Outcome run(const QStringList &command) { return vospeak(withAuthority(command)); }

    ScriptedServer m_server{Identity::Localhost};
    ScriptedServer m_clearServer;
    const QTemporaryDir m_folder;
    QScopedPointer<Home> m_home;
    Outcome m_outcome;
};

QTEST_GUILESS_MAIN(TestSignIn)
#include "tst_signin.moc"
