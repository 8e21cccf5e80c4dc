#include "requests/requestlog.h"

#include <QLocale>
#include <QRegularExpression>

namespace {

constexpr int mostEntries = 500;

// Tokens are long, codes and numbers of phones have four digits or more.
QString withoutSecrets(QString text)
{
    static const QRegularExpression secret(QStringLiteral(R"([\w.~+/-]{20,}|\d{4,})"));
    return text.replace(secret, QStringLiteral("***"));
}

} // namespace

RequestLog::RequestLog(QObject *parent)
    : QAbstractTableModel(parent)
{
}

QPersistentModelIndex RequestLog::begin(const QString &operation)
{
    if (m_entries.size() == mostEntries) {
        beginRemoveRows({}, mostEntries - 1, mostEntries - 1);
        m_entries.removeLast();
        endRemoveRows();
    }
    Entry entry;
    entry.since = QDateTime::currentDateTime();
    entry.elapsed.start();
    entry.operation = operation;
    beginInsertRows({}, 0, 0);
    m_entries.prepend(entry);
    endInsertRows();
    return index(0, 0);
}

void RequestLog::end(const QPersistentModelIndex &entry, const Reason &reason)
{
    const int row = entry.row();
    if (row < 0 || m_entries.at(row).duration >= 0)
        return;
    m_entries[row].duration = m_entries.at(row).elapsed.elapsed();
    m_entries[row].reason = reason;
    Q_EMIT dataChanged(index(row, 0), index(row, Columns - 1));
}

void RequestLog::abandon(const QPersistentModelIndex &entry)
{
    end(entry, {Reason::Kind::Cancelled, tr("given up")});
}

QString RequestLog::report() const
{
    QString report;
    for (const Entry &entry : m_entries) {
        QStringList fields{entry.since.toUTC().toString(Qt::ISODateWithMs)};
        for (int column = Operation; column < Why; ++column)
            fields.append(text(entry, column));
        fields.append(withoutSecrets(text(entry, Why)));
        report += fields.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
    return report;
}

int RequestLog::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_entries.size();
}

int RequestLog::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant RequestLog::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return text(m_entries.at(index.row()), index.column());
    if (role == Qt::TextAlignmentRole && index.column() == Duration)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant RequestLog::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList headers{tr("Time"), tr("Operation"), tr("Duration"), tr("Outcome"),
                              tr("Reason")};
    return headers.value(section);
}

QString RequestLog::text(const Entry &entry, int column) const
{
    const bool hasEnded = entry.duration >= 0;
    switch (column) {
    case Time:
        return QLocale().toString(entry.since.time(), QStringLiteral("hh:mm:ss"));
    case Operation:
        return entry.operation;
    case Duration:
        return hasEnded ? tr("%1 ms").arg(entry.duration) : QString();
    case Outcome:
        if (!hasEnded)
            return tr("under way");
        if (entry.reason.kind == Reason::Kind::Cancelled)
            return tr("cancelled");
        return entry.reason.isNone() ? tr("done") : tr("failed");
    default:
        return entry.reason.text;
    }
}
