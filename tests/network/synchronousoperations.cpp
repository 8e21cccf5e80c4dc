#include "tests/network/operation.h"
#include "tests/network/records.h"
#include "tests/network/text.h"

#include <QHash>

namespace {

template <typename Record>
QString consumed(const QList<Record *> &records)
{
    QString text = written(records);
    qDeleteAll(records);
    return text;
}

} // namespace

Operation Operations::getBgmList()
{
    Operation operation;
    operation.name = "GetBgmList"_s;
    operation.result = [](VoNetworkIntf *service) { return consumed(service->GetBgmList()); };
    operation.request = get("/convert/public/index.php/v1/asr/getBackgroundMusic");
    operation.start = QStringList{"VoNetworker::GetBgmList"_s};
    operation.successSlot = "slotGetBgmListSuc"_s;
    operation.failureSlot = "slotGetBgmListFail"_s;
    operation.refusal = "[error]slotGetBgmListSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"([{"name":"Rain","url":"https://files.example/rain.mp3"}])";
    operation.answer = R"([("Rain", "https://files.example/rain.mp3")])"_s;
    operation.emptyAnswers = QStringList{"[]"_s};
    operation.failure = operation.networkFailure = "[]"_s;
    return operation;
}

Operation Operations::getDubList()
{
    Operation operation;
    operation.name = "GetDubList"_s;
    operation.result = [](VoNetworkIntf *service) { return consumed(service->GetDubList()); };
    operation.request = get("/convert/public/index.php/v1/asr/getVoice");
    operation.start = QStringList{"VoNetworker::GetDubList"_s};
    operation.successSlot = "slotGetDubListSuc"_s;
    operation.failureSlot = "slotGetDubListFail"_s;
    operation.refusal = "[error]slotGetDubListSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"list":[{"name":"Anna","voiceParam":"anna","type":"adult",)"
                     R"("avatar":"https://a.example/a.png","category":"文学","scene":"story",)"
                     R"("audition_url":"https://files.example/anna.mp3",)"
                     R"("supportFeature":"语音合成"}]})";
    operation.answer = R"([("Anna", "anna", "adult", 2, "文学", "women_01.png", "story", )"
                       R"("https://files.example/anna.mp3", true, false)])"_s;
    operation.emptyAnswers = QStringList{"[]"_s};
    operation.failure = operation.networkFailure = "[]"_s;
    return operation;
}

Operation Operations::getUpdateInfo()
{
    Operation operation;
    operation.name = "GetUpdateInfo"_s;
    operation.result = [](VoNetworkIntf *service) { return written(updateInfo(service)); };
    operation.request = get("/app/public/index.php/v1/app/upgrade");
    operation.start = QStringList{"VoNetworker::GetUpdateInfo"_s};
    operation.successSlot = "slotGetDubListSuc"_s; // the log names the voices' slot
    operation.failureSlot = "slotGetUpdateInfoFail"_s;
    operation.refusal = "[error]slotGetDubListSuc failed:retCode= %1 ,msg= %2"_s;
    operation.data = R"({"upgradeStatus":2,"versionInfo":{"version_code":"1.2.0.0",)"
                     R"("external_update_log":["A","B"],"url":"https://files.example/new.exe"}})";
    operation.answer =
        "(2, \"1.1.1.26\", \"1.2.0.0\", \"  A\n  B\n\", \"https://files.example/new.exe\")"_s;
    operation.emptyAnswers = QStringList{R"((0, "1.1.1.26", "", "", ""))"_s};
    operation.failure = operation.networkFailure = "null"_s;
    return operation;
}

QList<Operation> Operations::synchronous() { return {getBgmList(), getDubList(), getUpdateInfo()}; }

UpdateInfo *Operations::updateInfo(VoNetworkIntf *service)
{
    static QHash<QObject *, UpdateInfo *> last;
    QObject::connect(service, &QObject::destroyed, [](QObject *gone) { delete last.take(gone); });
    last.insert(service, nullptr); // the call deletes the one before
    UpdateInfo *record = service->GetUpdateInfo();
    if (record)
        last.insert(service, record);
    return record;
}
