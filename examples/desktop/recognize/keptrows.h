#pragma once

#include <QString>
#include <QVector>

/// What is kept of a row of the queue for the next start.
struct KeptRow
{
    QString name; ///< Of its file.
    QString path; ///< Of the recording.
    bool isDone = false;
    QString text;   ///< What was recognised, now or before.
    QString reason; ///< Why it failed, unless it is done.
};

/// Each row is kept in a file of its own, for this user only, as soon as something comes of it: it
/// outlives a crash, and several windows keep theirs beside each other.
namespace KeptRows {

/// A name that no row has.
QString newName();

/// All rows, the oldest first.
QVector<KeptRow> load();

/// Keeps @p row in place of an older one with its name. Returns why that failed; empty: it is done.
QString keep(const KeptRow &row);

void forget(const QString &name);

} // namespace KeptRows
