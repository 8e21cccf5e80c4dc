#include "tests/network/operationtest.h"
#include "tests/network/records.h"

#include <QTest>

namespace {

QByteArray voices(const QByteArray &elements)
{
    return ScriptedServer::reply(Operations::envelope("{\"list\":[" + elements + "]}"));
}

QByteArray tracks(const QByteArray &elements)
{
    return ScriptedServer::reply(Operations::envelope('[' + elements + ']'));
}

const char emptyVoice[] = R"(("", "", "", 3, "", "women_01.png", "", "", false, false))";

} // namespace

/// GetDubList and GetBgmList.
class TestCatalogue : public OperationTest
{
    Q_OBJECT

protected:
    QList<Operation> operations() const override
    {
        return {Operations::getBgmList(), Operations::getDubList()};
    }

private Q_SLOTS:
    void fillsAVoiceFromItsMembers_data();
    void fillsAVoiceFromItsMembers();
    void readsWhatAVoiceSupports_data();
    void readsWhatAVoiceSupports();
    void readsTheListOfVoices_data();
    void readsTheListOfVoices();
    void fillsATrackFromItsMembers_data();
    void fillsATrackFromItsMembers();
    void readsTheListOfTracks_data();
    void readsTheListOfTracks();
    void keepsTheTracksInItsFourthFieldAndTheVoicesInItsSixth();
    void leavesTheVoicesOfAnEarlierCallAlone();
    void leavesTheTracksOfAnEarlierCallAlone();
    void forgetsTheVoicesOfAnEarlierCallWhenItFails();
    void forgetsTheTracksOfAnEarlierCallWhenItFails();
    void leavesItsRecordsBehindWhenTheObjectGoes();
};

void TestCatalogue::fillsAVoiceFromItsMembers_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *voice, const char *written) {
        QTest::newRow(title) << R"({"list":[)" + QByteArray(voice) + "]}"
                             << "[%1]"_s.arg(QString::fromUtf8(written));
    };
    row("nothing", "{}", emptyVoice);
    row("name alone", R"({"name":"x"})",
        R"(("x", "", "", 3, "", "women_01.png", "", "", false, false))");
    row("voiceParam alone", R"({"voiceParam":"x"})",
        R"(("", "x", "", 3, "", "women_01.png", "", "", false, false))");
    row("type alone", R"({"type":"x"})",
        R"(("", "", "x", 3, "", "women_01.png", "", "", false, false))");
    row("category alone", R"({"category":"x"})",
        R"(("", "", "", 3, "x", "women_01.png", "", "", false, false))");
    row("scene alone", R"({"scene":"x"})",
        R"(("", "", "", 3, "", "women_01.png", "x", "", false, false))");
    row("audition_url alone", R"({"audition_url":"x"})",
        R"(("", "", "", 3, "", "women_01.png", "", "x", false, false))");
    row("a known category", R"({"category":"美式英语"})",
        R"(("", "", "", 4, "美式英语", "women_01.png", "", "", false, false))");
    row("a category with a blank", R"({"category":"超高清 "})",
        R"(("", "", "", 3, "超高清 ", "women_01.png", "", "", false, false))");
    row("a known picture",
        R"({"avatar":"https://)" AVATAR_STORAGE_HOST
        R"(/speechdesk/voice_avatar/%E7%94%B702.png"})",
        R"(("", "", "", 3, "", "man_02.png", "", "", false, false))");
    row("no member is a text",
        R"({"name":7,"voiceParam":null,"type":true,"category":["文学"],"avatar":{},)"
        R"("scene":5,"audition_url":1.5,"supportFeature":["语音合成"]})",
        emptyVoice);
    row("names in other letters",
        R"({"Name":"x","voiceparam":"x","Type":"x","Category":"文学","Scene":"x",)"
        R"("auditionUrl":"x","supportfeature":"语音合成","dubType":5})",
        emptyVoice);
    row("another script", R"({"name":"安娜","scene":"a\/b\u00e9","type":"男 声"})",
        R"(("安娜", "", "男 声", 3, "", "women_01.png", "a/bé", "", false, false))");
}

void TestCatalogue::fillsAVoiceFromItsMembers() { exchangeData(Operations::getDubList()); }

void TestCatalogue::readsWhatAVoiceSupports_data()
{
    addDataColumns();
    const auto row =
        [](const char *features, bool shortTexts, bool longTexts) {
            QTest::newRow(features)
                << R"({"list":[{"supportFeature":")" + QByteArray(features) + "\"}]}"
                << R"([("", "", "", 3, "", "women_01.png", "", "", %1, %2)])"_s.arg(
                       shortTexts ? "true"_s : "false"_s, longTexts ? "true"_s : "false"_s);
        };
    row("", false, false);
    row("语音合成", true, false);
    row("长文本语音合成", false, true);
    row("语音合成,长文本语音合成", true, true);
    row("长文本语音合成,语音合成", true, true);
    row("语音合成, 长文本语音合成", true, false);
    row(" 语音合成,长文本语音合成", false, true);
    row("语音合成 ,长文本语音合成 ", false, false);
    row(",语音合成,,语音合成,", true, false);
    row("语音识别,语音合成,x", true, false);
    row("语音合成,长文本语音合成,other", true, true);
    row("长文本语音合成;语音合成", false, false);
    row("语音合成，长文本语音合成", false, false); // a comma of another kind
    row("other", false, false);
    row(",", false, false);
}

void TestCatalogue::readsWhatAVoiceSupports() { exchangeData(Operations::getDubList()); }

void TestCatalogue::readsTheListOfVoices_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *data, const QString &written) {
        QTest::newRow(title) << QByteArray(data) << written;
    };
    const QString empty = QLatin1String(emptyVoice);
    row("empty", R"({"list":[]})", "[]"_s);
    row("null", R"({"list":null})", "[]"_s);
    row("an object", R"({"list":{"name":"x"}})", "[]"_s);
    row("a text", R"({"list":"x"})", "[]"_s);
    row("in other letters", R"({"List":[{}]})", "[]"_s);
    row("directly in the data", R"([{"name":"x"}])", "[]"_s);
    row("in the service's order", R"({"list":[{"name":"c"},{"name":"a"},{"name":"b"}]})",
        "[%1, %2, %3]"_s.arg(QString(empty).replace(1, 2, R"("c")"_s),
                             QString(empty).replace(1, 2, R"("a")"_s),
                             QString(empty).replace(1, 2, R"("b")"_s)));
    row("the same voice twice", R"({"list":[{},{}]})", "[%1, %1]"_s.arg(empty));
    row("elements that are no objects", R"({"list":["x",7,null,[{"name":"x"}],true]})",
        "[%1, %1, %1, %1, %1]"_s.arg(empty));
}

void TestCatalogue::readsTheListOfVoices() { exchangeData(Operations::getDubList()); }

void TestCatalogue::fillsATrackFromItsMembers_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *track, const char *written) {
        QTest::newRow(title) << '[' + QByteArray(track) + ']'
                             << "[%1]"_s.arg(QString::fromUtf8(written));
    };
    row("nothing", "{}", R"(("", ""))");
    row("name alone", R"({"name":"x"})", R"(("x", ""))");
    row("url alone", R"({"url":"x"})", R"(("", "x"))");
    row("no member is a text", R"({"name":7,"url":["x"]})", R"(("", ""))");
    row("names in other letters", R"({"Name":"x","URL":"x"})", R"(("", ""))");
    row("another script", R"({"name":"雨","url":"a\/b\u00e9"})", R"(("雨", "a/bé"))");
}

void TestCatalogue::fillsATrackFromItsMembers() { exchangeData(Operations::getBgmList()); }

void TestCatalogue::readsTheListOfTracks_data()
{
    addDataColumns();
    const auto row = [](const char *title, const char *data, const char *written) {
        QTest::newRow(title) << QByteArray(data) << QString::fromUtf8(written);
    };
    row("empty", "[]", "[]");
    row("a level deeper, as voices are", R"({"list":[{"name":"x","url":"y"}]})", "[]");
    row("in the service's order", R"([{"name":"c"},{"name":"a"},{"name":"b"}])",
        R"([("c", ""), ("a", ""), ("b", "")])");
    row("elements that are no objects", R"(["x",7,null,[{"name":"x"}],true])",
        R"([("", ""), ("", ""), ("", ""), ("", ""), ("", "")])");
}

void TestCatalogue::readsTheListOfTracks() { exchangeData(Operations::getBgmList()); }

void TestCatalogue::keepsTheTracksInItsFourthFieldAndTheVoicesInItsSixth()
{
    server->answer(tracks("{}"));
    server->answer(voices("{},{}"));
    const QList<BgmInfo *> bgm = service->GetBgmList();
    const QList<DubInfo *> dub = service->GetDubList();
    // All fields are of a pointer's size.
    const char *fields = reinterpret_cast<const char *>(service) + sizeof(VoNetworkIntf);
    const auto *fourth = reinterpret_cast<const QList<BgmInfo *> *>(fields + 3 * sizeof(void *));
    const auto *sixth = reinterpret_cast<const QList<DubInfo *> *>(fields + 5 * sizeof(void *));
    const bool inOrder = *fourth == bgm && *sixth == dub;
    qDeleteAll(bgm);
    qDeleteAll(dub);
    QVERIFY(inOrder);
}

void TestCatalogue::leavesTheVoicesOfAnEarlierCallAlone()
{
    server->answer(voices(R"({"name":"a"},{"name":"b"})"));
    server->answer(voices(R"({"name":"c"})"));
    const QList<DubInfo *> first = service->GetDubList();
    const QString before = written(first);
    const QList<DubInfo *> second = service->GetDubList();
    QCOMPARE(first.size(), 2);
    QCOMPARE(second.size(), 1);
    QCOMPARE(written(first), before);
    QCOMPARE(second.first()->name, "c"_s);
    QVERIFY(!first.contains(second.first()));
    qDeleteAll(first);
    qDeleteAll(second);
}

void TestCatalogue::leavesTheTracksOfAnEarlierCallAlone()
{
    server->answer(tracks(R"({"name":"a"},{"name":"b"})"));
    server->answer(tracks(R"({"name":"c"})"));
    const QList<BgmInfo *> first = service->GetBgmList();
    const QList<BgmInfo *> second = service->GetBgmList();
    QCOMPARE(written(first), R"([("a", ""), ("b", "")])"_s);
    QCOMPARE(written(second), R"([("c", "")])"_s);
    QVERIFY(!first.contains(second.first()));
    qDeleteAll(first);
    qDeleteAll(second);
}

void TestCatalogue::forgetsTheVoicesOfAnEarlierCallWhenItFails()
{
    server->answer(voices("{}"));
    server->answer(ScriptedServer::reply(R"({"code":7})"));
    const QList<DubInfo *> first = service->GetDubList();
    QCOMPARE(service->GetDubList(), QList<DubInfo *>());
    QCOMPARE(written(first), "[%1]"_s.arg(QLatin1String(emptyVoice)));
    qDeleteAll(first);
}

void TestCatalogue::forgetsTheTracksOfAnEarlierCallWhenItFails()
{
    server->answer(tracks("{}"));
    server->answer(ScriptedServer::reply("", "500 Oops"));
    const QList<BgmInfo *> first = service->GetBgmList();
    QCOMPARE(service->GetBgmList(), QList<BgmInfo *>());
    QCOMPARE(written(first), R"([("", "")])"_s);
    qDeleteAll(first);
}

void TestCatalogue::leavesItsRecordsBehindWhenTheObjectGoes()
{
    server->answer(voices(R"({"name":"a"})"));
    server->answer(tracks(R"({"name":"b"})"));
    const QList<DubInfo *> voices = service->GetDubList();
    const QList<BgmInfo *> tracks = service->GetBgmList();
    release();
    QCOMPARE(voices.first()->name, "a"_s);
    QCOMPARE(written(tracks), R"([("b", "")])"_s);
    qDeleteAll(voices);
    qDeleteAll(tracks);
}

QTEST_GUILESS_MAIN(TestCatalogue)
#include "tst_catalogue.moc"
