#pragma once

#include "tools.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

/// A task of the service, asked after until it is over: soon at first, then ever more rarely. The
/// slots take what the service object says of tasks of either kind.
class Task : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Task)

public:
    explicit Task(const Tools &tools);

    void onCreated(int status, const QString &id);
    void onStatus(int status, const QString &id, const QString &requestId, const QString &result);

Q_SIGNALS:
    /// The service is to be asked, which onStatus() answers.
    void due(const QString &id, qint64 token);

    void succeeded(const QString &result);

    /// The line is for the user.
    void failed(const QString &problem);

private:
    void wait();

    Tools m_tools;
    QString m_id;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    int m_interval;
};
