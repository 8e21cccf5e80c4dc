#include "network/buildconstants.h"
#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/vonetworker.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// Failed replies are logged under the name of GetDubList. Searches of logs rely on that.
constexpr ServiceOperation getUpdateInfo{HttpMethod::Get, appServicePrefix, "app/upgrade",
                                         "GetUpdateInfo", refusalWithNames, "GetDubList"};

QString indentedLines(const QJsonArray &changes)
{
    QString lines;
    for (const QJsonValue &change : changes)
        lines += QLatin1String("  ") + change.toString() + QLatin1Char('\n');
    return lines;
}

UpdateInfo *updateInfoFrom(const QJsonObject &data)
{
    const QJsonObject version = data.value(QLatin1String("versionInfo")).toObject();
    auto *info = new UpdateInfo; // owned by the networker, which deletes it at the next call
    info->upgradeStatus = data.value(QLatin1String("upgradeStatus")).toInt();
    info->currentVersion = QLatin1String(BuildConstants::libraryVersion);
    info->version_code = version.value(QLatin1String("version_code")).toString();
    info->external_update_log =
        indentedLines(version.value(QLatin1String("external_update_log")).toArray());
    info->url = version.value(QLatin1String("url")).toString();
    return info;
}

} // namespace

UpdateInfo *VoNetworker::GetUpdateInfo()
{
    ServiceLog::begin("VoNetworker::GetUpdateInfo");
    delete updateInfo;
    updateInfo = nullptr;
    issue(getUpdateInfo, commonHeaders(), {});
    return waitForAnswer() ? updateInfo : nullptr;
}

void VoNetworker::slotGetUpdateInfoSuc(QByteArray jsonStr)
{
    if (const auto data = ServiceEnvelope::read(jsonStr, getUpdateInfo))
        updateInfo = updateInfoFrom(data->toObject());
    endWait();
}

void VoNetworker::slotGetUpdateInfoFail(QByteArray failInfo)
{
    ServiceLog::failure(getUpdateInfo, failInfo);
    endWait();
}
