#pragma once

#include "hostkit/job.h"

#include <QAbstractTableModel>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QVector>

class Desk;
class RecognizeJob;

/// The recordings to be recognised, one after the other, and what came of them. The rows are kept
/// for the next start, until they are removed.
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

    /// Has the rows that were kept. One that was not done then has failed.
    explicit RecognitionQueue(Desk *desk, QObject *parent = nullptr);

    /// Appends the file @p path.
    void add(const QString &path);

    /// The recording itself stays.
    void remove(int row);

    /// Ends a row that waits or is under way.
    void cancel(int row);

    /// Puts a row that has ended to work once more. The text stays until there is another.
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

Q_SIGNALS:
    /// A row will not be there at the next start, for the reason @p why.
    void notKept(const QString &why);

private:
    struct Entry
    {
        QString name; ///< Under which it is kept.
        QString path;
        State state = State::Waiting;
        QString progress;
        int percent = -1;
        QString text;   ///< What was recognised, now or before.
        QString reason; ///< Of a row that failed.
    };

    QString statusText(State state) const;
    QString progressText(const Entry &entry) const;
    void startNext();
    void onProgress(Job::Stage stage, qint64 done, qint64 total);
    void end(State state, const QString &text, const QString &reason);
    void change(int row);
    void keep(int row);

    Desk *m_desk;
    QVector<Entry> m_entries;
    QPointer<RecognizeJob> m_job;    ///< Of the row that is under way.
    QPersistentModelIndex m_current; ///< That row; not valid: it was removed.
};
