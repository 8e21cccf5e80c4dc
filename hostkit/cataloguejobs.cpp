#include "hostkit/cataloguejobs.h"

#include <QtAlgorithms>

#include <memory>

namespace {

// The records as values. They belong to whoever was given their list.
template <typename Record>
QVector<Record> valuesOf(const QList<Record *> &records)
{
    QVector<Record> values;
    values.reserve(records.size());
    for (const Record *record : records)
        values.append(*record);
    qDeleteAll(records);
    return values;
}

} // namespace

template <typename Kind, typename Record>
void ListJob::askFor(QList<Record *> (VoNetworkIntf::*list)(),
                     void (Kind::*succeeded)(const QVector<Record> &records))
{
    const auto records = std::make_shared<QVector<Record>>();
    runWaiting([=](VoNetworkIntf *service) { *records = valuesOf((service->*list)()); },
               [=](const Reason &reason) {
                   if (!reason.isNone())
                       fail(reason);
                   else if (conclude())
                       Q_EMIT(static_cast<Kind *>(this)->*succeeded)(*records);
               });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

VoicesJob::VoicesJob(HostKit *kit, QObject *parent)
    : ListJob(kit, parent)
{
    qRegisterMetaType<QVector<DubInfo>>();
}

void VoicesJob::begin() { askFor(&VoNetworkIntf::GetDubList, &VoicesJob::succeeded); }

MusicJob::MusicJob(HostKit *kit, QObject *parent)
    : ListJob(kit, parent)
{
    qRegisterMetaType<QVector<BgmInfo>>();
}

void MusicJob::begin() { askFor(&VoNetworkIntf::GetBgmList, &MusicJob::succeeded); }

UpdateJob::UpdateJob(HostKit *kit, QObject *parent)
    : ServiceJob(kit, parent)
{
    qRegisterMetaType<Update>();
}

// The record is the service object's, which never frees the last one. Nobody else has it once that
// object is gone, at the end of its thread.
void UpdateJob::begin()
{
    const auto info = std::make_shared<std::unique_ptr<UpdateInfo>>();
    runWaiting([=](VoNetworkIntf *service) { info->reset(service->GetUpdateInfo()); },
               [=](const Reason &reason) {
                   if (*info)
                       onInfo(**info);
                   else
                       fail(reason.isNone() ? notAnswered() : reason);
               });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void UpdateJob::onInfo(const UpdateInfo &info)
{
    const auto state = Update::State(info.upgradeStatus);
    if (state < Update::State::UpToDate || state > Update::State::NewerIsNeeded)
        return fail(notAnswered());
    Update update{state, info.currentVersion, info.version_code,
                  info.external_update_log.split(QLatin1Char('\n'), Qt::SkipEmptyParts), info.url};
    for (QString &change : update.changes) // the library indents them
        change = change.trimmed();
    if (conclude())
        Q_EMIT succeeded(update);
}
