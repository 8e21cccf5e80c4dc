#include "recognize/recognitionqueue.h"

#include "common/desk.h"
#include "hostkit/recognizejob.h"
#include "recognize/keptrows.h"

#include <QFileInfo>

#include <algorithm>

RecognitionQueue::RecognitionQueue(Desk *desk, QObject *parent)
    : QAbstractTableModel(parent)
    , m_desk(desk)
{
    const QVector<KeptRow> rows = KeptRows::load();
    for (const KeptRow &row : rows) {
        Entry entry;
        entry.name = row.name;
        entry.path = row.path;
        entry.state = row.isDone ? State::Done : State::Failed;
        entry.text = row.text;
        entry.reason =
            row.reason.isEmpty() ? tr("it was not done when this window was opened") : row.reason;
        m_entries.append(entry);
    }
}

void RecognitionQueue::add(const QString &path)
{
    Entry entry;
    entry.name = KeptRows::newName();
    entry.path = path;
    beginInsertRows({}, m_entries.size(), m_entries.size());
    m_entries.append(entry);
    endInsertRows();
    keep(m_entries.size() - 1);
    startNext();
}

void RecognitionQueue::remove(int row)
{
    cancel(row);
    KeptRows::forget(m_entries.at(row).name);
    beginRemoveRows({}, row, row);
    m_entries.removeAt(row);
    endRemoveRows();
}

void RecognitionQueue::cancel(int row)
{
    Entry &entry = m_entries[row];
    if (entry.state == State::UnderWay) {
        m_job->cancel();
    } else if (entry.state == State::Waiting) {
        entry.state = State::Failed;
        entry.reason = tr("cancelled");
        change(row);
        keep(row);
    }
}

void RecognitionQueue::retry(int row)
{
    Entry &entry = m_entries[row];
    if (entry.state == State::Waiting || entry.state == State::UnderWay)
        return;
    entry.state = State::Waiting;
    change(row);
    startNext();
}

RecognitionQueue::State RecognitionQueue::state(int row) const { return m_entries.at(row).state; }

QString RecognitionQueue::path(int row) const { return m_entries.at(row).path; }

QString RecognitionQueue::text(int row) const { return m_entries.at(row).text; }

QString RecognitionQueue::reason(int row) const { return m_entries.at(row).reason; }

int RecognitionQueue::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_entries.size();
}

int RecognitionQueue::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : Columns;
}

QVariant RecognitionQueue::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Entry &entry = m_entries.at(index.row());
    if (role == PercentRole)
        return entry.state == State::UnderWay ? entry.percent : QVariant();
    if (role == Qt::ToolTipRole && index.column() == Recording)
        return entry.path;
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    if (index.column() == Recording)
        return QFileInfo(entry.path).fileName();
    return index.column() == Status ? statusText(entry.state) : progressText(entry);
}

QVariant RecognitionQueue::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return QStringList{tr("Recording"), tr("State"), tr("Progress and result")}.value(section);
}

QString RecognitionQueue::statusText(State state) const
{
    switch (state) {
    case State::Waiting:
        return tr("waiting");
    case State::UnderWay:
        return tr("under way");
    case State::Done:
        return tr("done");
    case State::Failed:
        return tr("failed");
    }
    return {};
}

QString RecognitionQueue::progressText(const Entry &entry) const
{
    switch (entry.state) {
    case State::Waiting:
        return {};
    case State::UnderWay:
        return entry.progress;
    case State::Done:
        return entry.text.isEmpty() ? tr("nobody spoke") : entry.text;
    case State::Failed:
        return entry.reason;
    }
    return {};
}

void RecognitionQueue::startNext()
{
    const auto next = std::find_if(m_entries.begin(), m_entries.end(), [](const Entry &entry) {
        return entry.state == State::Waiting;
    });
    if (m_job || next == m_entries.end())
        return;
    next->state = State::UnderWay;
    next->percent = -1;
    next->progress = tr("asking the service");
    const int row = int(next - m_entries.begin());
    m_current = index(row, 0);
    m_job = new RecognizeJob(m_desk->kit(), next->path, Job::Form::ByLength, this);
    connect(m_job, &Job::progressed, this, &RecognitionQueue::onProgress);
    connect(m_job, &RecognizeJob::succeeded, this,
            [this](const QString &text) { end(State::Done, text, {}); });
    connect(m_job, &Job::failed, this,
            [this](const Reason &reason) { end(State::Failed, {}, reason.line()); });
    change(row);
    m_desk->run(m_job.data(), tr("Recognition"));
}

void RecognitionQueue::onProgress(Job::Stage stage, qint64 done, qint64 total)
{
    if (!m_current.isValid())
        return;
    Entry &entry = m_entries[m_current.row()];
    entry.percent = -1;
    if (stage == Job::Stage::Uploading && total > 0) {
        entry.percent = int(100 * done / total);
        entry.progress = tr("uploading, %1 %").arg(entry.percent);
    } else if (stage == Job::Stage::Working) {
        entry.progress = tr("the service works on it, %1 s").arg(done);
    } else {
        entry.progress = tr("asking the service");
    }
    change(m_current.row());
}

void RecognitionQueue::end(State state, const QString &text, const QString &reason)
{
    m_job = nullptr;
    if (m_current.isValid()) {
        Entry &entry = m_entries[m_current.row()];
        entry.state = state;
        entry.reason = reason;
        if (state == State::Done)
            entry.text = text;
        change(m_current.row());
        keep(m_current.row());
    }
    startNext();
}

void RecognitionQueue::change(int row)
{
    Q_EMIT dataChanged(index(row, 0), index(row, Columns - 1));
}

void RecognitionQueue::keep(int row)
{
    const Entry &entry = m_entries.at(row);
    const QString problem = KeptRows::keep(
        {entry.name, entry.path, entry.state == State::Done, entry.text, entry.reason});
    if (!problem.isEmpty())
        Q_EMIT notKept(problem);
}
