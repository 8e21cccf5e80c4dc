#pragma once

#include "hostkit/job.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QVector>

class Desk;
class RecognizeJob;

/// The recordings to be recognised, one after the other, and what came of them.
class RecognitionQueue : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY(RecognitionQueue)

public:
    enum class State { Waiting, UnderWay, Done, Failed };
    enum Column { Recording, Status, Progress, Columns };
    enum Role {
        PercentRole = Qt::UserRole, ///< 0 to 100, -1 where nobody knows; not valid: no progress.
    };

    explicit RecognitionQueue(Desk *desk, QObject *parent = nullptr);

    /// Appends the file @p path.
    void add(const QString &path);

    void remove(int row);

    /// Ends a row that waits or is under way.
    void cancel(int row);

    /// Puts a row that has ended to work once more.
    void retry(int row);

    State state(int row) const;
    QString path(int row) const;
    QString text(int row) const;
    QString reason(int row) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Entry
    {
        int id = 0;
        QString path;
        State state = State::Waiting;
        QString progress;
        int percent = -1;
        QString text;   ///< Of a row that is done.
        QString reason; ///< Of one that failed.
    };

    QString statusText(State state) const;
    QString progressText(const Entry &entry) const;
    Entry *find(int id);
    void startNext();
    void onProgress(Job::Stage stage, qint64 done, qint64 total);
    void end(State state, const QString &text, const QString &reason);
    void change(const Entry *entry);

    Desk *m_desk;
    QVector<Entry> m_entries;
    int m_lastId = 0;
    QPointer<RecognizeJob> m_job; ///< Of the row that is under way.
    int m_current = 0;            ///< The identifier of that row.
};
