#pragma once

#include "hostkit/servicejob.h"
#include "network/vonetworkintf.h"

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

// Each of these asks in a thread of its own, since the service object waits for the answer. Several
// may be under way at once.

/// The common part of the jobs that ask for a list.
class ListJob : public ServiceJob
{
    Q_OBJECT
    Q_DISABLE_COPY(ListJob)

protected:
    /// @p kit outlives the job.
    using ServiceJob::ServiceJob;

    /// Has @p list called, and emits @p succeeded, a signal of this object, with the records.
    template <typename Kind, typename Record>
    void askFor(QList<Record *> (VoNetworkIntf::*list)(),
                void (Kind::*succeeded)(const QVector<Record> &records));
};

/// The voices that texts can be spoken with. StockPictures has their pictures; a FetchJob fetches a
/// voice's sample.
class VoicesJob : public ListJob
{
    Q_OBJECT
    Q_DISABLE_COPY(VoicesJob)

public:
    /// @p kit outlives the job.
    explicit VoicesJob(HostKit *kit, QObject *parent = nullptr);

Q_SIGNALS:
    /// In the service's order. Empty where the service has none, and where it answered in a way
    /// that the library does not tell from that.
    void succeeded(const QVector<DubInfo> &voices);

protected:
    void begin() override;
};

/// The tracks of background music.
class MusicJob : public ListJob
{
    Q_OBJECT
    Q_DISABLE_COPY(MusicJob)

public:
    /// @p kit outlives the job.
    explicit MusicJob(HostKit *kit, QObject *parent = nullptr);

Q_SIGNALS:
    /// As VoicesJob::succeeded().
    void succeeded(const QVector<BgmInfo> &tracks);

protected:
    void begin() override;
};

/// What the service says of newer versions.
struct Update
{
    /// The values on which the service and its hosts have agreed.
    enum class State : qint32 {
        UpToDate = 0,      ///< Nothing: there is none.
        NewerIsThere = 1,  ///< It may be installed.
        NewerIsNeeded = 2, ///< It has to be: the present one is not supported any more.
    };

    State state = State::UpToDate; ///< What to do.
    QString currentVersion;        ///< Of the library.
    QString version;               ///< That is offered.
    QStringList changes;           ///< In it.
    QString address;               ///< Where it is to be had.
};

/// Asks whether there is a newer version.
class UpdateJob : public ServiceJob
{
    Q_OBJECT
    Q_DISABLE_COPY(UpdateJob)

public:
    /// @p kit outlives the job.
    explicit UpdateJob(HostKit *kit, QObject *parent = nullptr);

Q_SIGNALS:
    /// The service has answered.
    void succeeded(const Update &update);

protected:
    void begin() override;

private:
    void onInfo(const UpdateInfo &info);
};

Q_DECLARE_METATYPE(DubInfo)
Q_DECLARE_METATYPE(BgmInfo)
Q_DECLARE_METATYPE(Update)
