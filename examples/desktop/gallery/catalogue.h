#pragma once

#include "gallery/voicemodel.h"
#include "network/vonetworkintf.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringListModel>
#include <QTemporaryDir>

#include <functional>

class Desk;
struct Reason;

/// The voices and the music of the service, and the recordings of both.
class Catalogue : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Catalogue)

public:
    using Done = std::function<void(const QString &path, const QString &problem)>;

    explicit Catalogue(Desk *desk);

    /// Asks the service for both lists, unless it is being asked.
    void load();

    VoiceModel *voices();

    /// Whether the service has named its voices, though they be none.
    bool hasVoices() const;

    /// The names of the tracks.
    QAbstractItemModel *music();
    QString musicAddress(int row) const;

    /// Calls @p done with the path of a file that holds what is at @p address, or with why there is
    /// none, unless @p context goes before. A recording is fetched once.
    void fetch(const QString &address, QObject *context, const Done &done);

Q_SIGNALS:
    /// The lists are there.
    void loaded();

    /// One of the lists could not be had.
    void failed(const QString &why);

private:
    struct Waiting
    {
        QPointer<QObject> context;
        Done done;
    };

    void endFetch(const QString &address, const QString &path, const QString &problem);

    Desk *m_desk;
    VoiceModel m_voices;
    QStringListModel m_musicNames;
    QVector<BgmInfo> m_music;
    bool m_hasVoices = false;
    int m_pending = 0;                          ///< Lists that are asked for.
    QHash<QString, QVector<Waiting>> m_fetches; ///< That are under way, by their address.
    QTemporaryDir m_folder;
};
