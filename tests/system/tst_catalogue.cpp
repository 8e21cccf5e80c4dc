#include "tests/support/scriptedserver.h"
#include "tests/system/answers.h"
#include "tests/system/home.h"
#include "tests/system/program.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace {

QJsonObject voice(const char *name, const char *id, const char *category, const char *scene,
                  const char *features)
{
    return {{QStringLiteral("name"), QString::fromUtf8(name)},
            {QStringLiteral("voiceParam"), QString::fromUtf8(id)},
            {QStringLiteral("type"), QStringLiteral("kind")},
            {QStringLiteral("avatar"),
             QStringLiteral("https://localhost/speechdesk/voice_avatar/avatar_girl.png")},
            {QStringLiteral("category"), QString::fromUtf8(category)},
            {QStringLiteral("scene"), QString::fromUtf8(scene)},
            {QStringLiteral("audition_url"),
             QStringLiteral("https://a.example/%1").arg(QString::fromUtf8(id))},
            {QStringLiteral("supportFeature"), QString::fromUtf8(features)}};
}

QByteArray voices()
{
    return Answers::envelope(
        {{QStringLiteral("list"),
          QJsonArray{voice("Anna", "a", "英文", "news", "语音合成,长文本语音合成"),
                     voice("小云", "yun_2", "文学", "", "长文本语音合成"),
                     voice("Escape\x1b[1m", "e", "多语种", "two\nlines", "语音合成"),
                     voice("Rene\xcc\x81", "r", "general", "x", "")}}});
}

QByteArray enveloped(const QJsonValue &data)
{
    return ScriptedServer::reply(
        QJsonDocument(QJsonObject{{QStringLiteral("code"), 0}, {QStringLiteral("data"), data}})
            .toJson());
}

QByteArray music()
{
    return enveloped(QJsonArray{
        QJsonObject{{QStringLiteral("name"), QStringLiteral("Dawn")},
                    {QStringLiteral("url"), QStringLiteral("https://a.example/dawn.mp3")}},
        QJsonObject{{QStringLiteral("name"), QStringLiteral("雨")},
                    {QStringLiteral("url"), QStringLiteral("https://a.example/rain.mp3")}}});
}

QByteArray update(int status, const QString &version = QStringLiteral("9.1"))
{
    return Answers::envelope(
        {{QStringLiteral("upgradeStatus"), status},
         {QStringLiteral("versionInfo"),
          QJsonObject{{QStringLiteral("version_code"), version},
                      {QStringLiteral("external_update_log"),
                       QJsonArray{QStringLiteral("More voices"), QStringLiteral("Faster")}},
                      {QStringLiteral("url"), QStringLiteral("https://a.example/9.1")}}}});
}

// Readable here, with other quotation marks.
QByteArray json(QByteArray text) { return text.replace('\'', '"'); }

QByteArray thisVersion()
{
    const QByteArray line = vospeak(arguments("--version")).out;
    return line.mid(line.indexOf(' ') + 1).trimmed();
}

} // namespace

/// What vospeak prints of the voices, the music and the updates that the service offers.
class TestCatalogue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const quint16 port = SERVICE_PORT;
        QVERIFY(m_server.start(port));
    }
    void init() { m_server.reset(); }

    void aListIsPrintedAsATable_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QByteArray>("printed");
        QTest::newRow("voices")
            << QStringLiteral("voices") << voices()
            << QByteArray("NAME        VOICE  CATEGORY  SCENE      SHORT  LONG\n"
                          "Anna        a      英文      news       yes    yes\n"
                          "小云        yun_2  文学                 no     yes\n"
                          "Escape [1m  e      多语种    two lines  yes    no\n"
                          "Rene\xcc\x81        r      general   x          no     no\n");
        QTest::newRow("music") << QStringLiteral("music") << music()
                               << QByteArray("NAME  ADDRESS\n"
                                             "Dawn  https://a.example/dawn.mp3\n"
                                             "雨    https://a.example/rain.mp3\n");
    }
    void aListIsPrintedAsATable()
    {
        QFETCH(const QString, command);
        QFETCH(const QByteArray, answer);
        QFETCH(const QByteArray, printed);
        m_server.answer(answer);
        const Outcome outcome = run({command});
        QCOMPARE(QString::fromUtf8(outcome.out), QString::fromUtf8(printed));
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
    }

    void whatTheServiceSaysOfUpdatesIsPrinted_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("printed");
        const QByteArray rest = "  More voices\n  Faster\nhttps://a.example/9.1\n";
        QTest::newRow("none") << 0 << thisVersion() + " is the newest version\n";
        QTest::newRow("there") << 1 << "9.1 is there, newer than " + thisVersion() + "\n" + rest;
        QTest::newRow("needed") << 2 << "9.1 is needed in place of " + thisVersion() + "\n" + rest;
    }
    void whatTheServiceSaysOfUpdatesIsPrinted()
    {
        QFETCH(const int, status);
        QFETCH(const QByteArray, printed);
        m_server.answer(update(status));
        const Outcome outcome = run(arguments("update"));
        QCOMPARE(outcome.out, printed);
        QCOMPARE(outcome.err, QByteArray());
        QCOMPARE(outcome.status, 0);
    }

    void whatATerminalObeysBecomesABlank_data()
    {
        QTest::addColumn<QString>("character");
        QTest::addColumn<QString>("printed");
        const QString blank = QStringLiteral(" ");
        for (const ushort code : {0x0000, 0x001b, 0x007f, 0x0080, 0x009b, 0x009f, 0x200e, 0x2028,
                                  0x2029, 0x202e, 0x2066, 0xfeff})
            QTest::addRow("U+%04X", code) << QString(QChar(code)) << blank;
        for (const ushort code : {0x007e, 0x00a1, 0x00e9, 0x200c, 0x200d, 0x4f60})
            QTest::addRow("U+%04X", code) << QString(QChar(code)) << QString(QChar(code));
        QTest::newRow("U+E0001") << QStringLiteral("\U000e0001") << blank;
        QTest::newRow("U+1F600") << QStringLiteral("\U0001f600") << QStringLiteral("\U0001f600");
    }
    void whatATerminalObeysBecomesABlank()
    {
        QFETCH(const QString, character);
        QFETCH(const QString, printed);
        m_server.answer(update(1, QStringLiteral("9%1exe").arg(character)));
        const Outcome outcome = run(arguments("update"));
        QCOMPARE(outcome.out, "9" + printed.toUtf8() + "exe is there, newer than " + thisVersion()
                                  + "\n  More voices\n  Faster\nhttps://a.example/9.1\n");
    }

    void jsonEscapesWhatATerminalObeys()
    {
        m_server.answer(update(1, QStringLiteral("~\x7f\u0080\u009b31m\u009f\u00a0\u202e\u2066"
                                                 "\u2028\u200d\U0001f600\U000e0001\ufeff\x1b")));
        const Outcome outcome = run(arguments("update --json"));
        QCOMPARE(outcome.out,
                 json("{'changes':['More voices','Faster'],'currentVersion':'" + thisVersion()
                      + "','status':1,'url':'https://a.example/9.1',"
                        "'version':'~"
                        "\\u007f\\u0080\\u009b31m\\u009f\xc2\xa0\\u202e\\u2066\\u2028\xe2\x80\x8d"
                        "\xf0\x9f\x98\x80\\udb40\\udc01\\ufeff\\u001b'}\n"));
    }

    void jsonIsOneDocumentOnOneLine_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QByteArray>("document");
        QTest::newRow("voices")
            << QStringLiteral("voices")
            << Answers::envelope(
                   {{QStringLiteral("list"),
                     QJsonArray{voice("Anna", "a", "英文", "news", "语音合成,长文本语音合成")}}})
            << json("{'voices':[{'name':'Anna','voice':'a','type':'kind','category':'英文',"
                    "'scene':'news','avatar':'women_01.png','sampleUrl':'https://a.example/a',"
                    "'shortSynthesis':true,'longSynthesis':true}]}");
        QTest::newRow("music")
            << QStringLiteral("music") << music()
            << json("{'music':[{'name':'Dawn','url':'https://a.example/dawn.mp3'},"
                    "{'name':'雨','url':'https://a.example/rain.mp3'}]}");
        QTest::newRow("update") << QStringLiteral("update") << update(2)
                                << json("{'status':2,'currentVersion':'" + thisVersion()
                                        + "','version':'9.1','changes':['More voices','Faster'],"
                                          "'url':'https://a.example/9.1'}");
    }
    void jsonIsOneDocumentOnOneLine()
    {
        QFETCH(const QString, command);
        QFETCH(const QByteArray, answer);
        QFETCH(const QByteArray, document);
        m_server.answer(answer);
        const Outcome outcome = run({command, QStringLiteral("--json")});
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.err, QByteArray());
        QVERIFY2(outcome.out.endsWith("}\n") && outcome.out.count('\n') == 1,
                 outcome.out.constData());
        QVERIFY(!QJsonDocument::fromJson(document).isNull());
        QCOMPARE(QJsonDocument::fromJson(outcome.out), QJsonDocument::fromJson(document));
    }

    void nothingToListIsAFailure_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("status");
        const auto row = [](const char *command, const char *name, const QByteArray &answer,
                            int status) {
            QTest::addRow("%s, %s", command, name)
                << QString::fromLatin1(command) << answer << status;
        };
        for (const char *command : {"voices", "music", "update"}) {
            row(command, "refused", Answers::refusal(5, "no"), 5);
            row(command, "no JSON", ScriptedServer::reply("<html>"), 1);
            row(command, "HTTP error", ScriptedServer::reply("", "503 Busy"), 5);
        }
        row("voices", "none", Answers::envelope({{QStringLiteral("list"), QJsonArray()}}), 1);
        row("music", "none", enveloped(QJsonArray()), 1);
        row("update", "unknown status", update(3), 1);
        row("update", "negative status", update(-1), 1);
    }
    void nothingToListIsAFailure()
    {
        QFETCH(const QString, command);
        QFETCH(const QByteArray, answer);
        QFETCH(const int, status);
        m_server.answer(answer);
        for (const QStringList &command :
             {QStringList{command}, QStringList{command, QStringLiteral("--json")}}) {
            const Outcome outcome = run(command);
            QCOMPARE(outcome.status, status);
            QCOMPARE(outcome.out, QByteArray());
            QVERIFY2(isOneLine(outcome.err), outcome.err.constData());
        }
    }

    void nobodyHasToBeSignedIn()
    {
        m_server.answer(music());
        QCOMPARE(run(arguments("music")).status, 0);
        QCOMPARE(m_server.requests().size(), 1);
        QVERIFY2(!m_server.requests().at(0).toLower().contains("\r\nauthorization:"),
                 m_server.requests().at(0).constData());
    }

private:
    static Outcome run(const QStringList &command)
    {
        return vospeak(command
                       + QStringList{QStringLiteral("--ca"), QStringLiteral(TEST_AUTHORITY)});
    }

    const Home m_home;
    ScriptedServer m_server{Identity::Localhost};
};

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
