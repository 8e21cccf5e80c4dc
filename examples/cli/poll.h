#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

/// Paces the questions about a task: soon at first, then ever more rarely.
class Poll : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Poll)

public:
    explicit Poll(QObject *parent = nullptr);

    /// Asks for one more due().
    void next();

    /// Since the poll was made.
    qint64 seconds() const;

Q_SIGNALS:
    void due();

private:
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    int m_interval;
};
