#pragma once

#include "hostkit/reason.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QElapsedTimer>
#include <QPersistentModelIndex>
#include <QVector>

/// The last operations that were asked of the service, the newest first. It holds neither texts nor
/// tokens; what servers say goes into report() without what may be a token, a code or a number of a
/// phone.
class RequestLog : public QAbstractTableModel
{
    Q_OBJECT
    Q_DISABLE_COPY(RequestLog)

public:
    enum Column { Time, Operation, Duration, Outcome, Why, Columns };

    explicit RequestLog(QObject *parent = nullptr);

    /// Adds an operation that begins now. Returns what end() needs.
    QPersistentModelIndex begin(const QString &operation);

    /// Ends the entry, unless it has ended or is forgotten: @p reason says why it failed, none that
    /// it succeeded.
    void end(const QPersistentModelIndex &entry, const Reason &reason);

    /// Ends the entry in the same way because nobody waits for it any more.
    void abandon(const QPersistentModelIndex &entry);

    /// All rows as lines of text, the columns separated by tabs.
    QString report() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

private:
    struct Entry
    {
        QDateTime since;
        QElapsedTimer elapsed;
        QString operation;
        qint64 duration = -1; ///< Milliseconds; -1: it is under way.
        Reason reason;
    };

    QString text(const Entry &entry, int column) const;

    QVector<Entry> m_entries; ///< The newest first.
};
