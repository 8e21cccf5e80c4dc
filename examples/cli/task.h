#pragma once

#include "tools.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

/// A task of the service that is asked after until it is over: every 200 ms at first, then less and
/// less often, every 5 s in the end. It serves recognitions and syntheses: the slots take the
/// signals of the service object for either.
class Task : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Task)

public:
    explicit Task(const Tools &tools);

    void onCreated(int status, const QString &id);
    void onStatus(int status, const QString &id, const QString &requestId, const QString &result);

Q_SIGNALS:
    /// The service is to be asked about the task; onStatus() takes the answer.
    void due(const QString &id, qint64 token);

    /// @p result is the text, or the address of the audio.
    void succeeded(const QString &result);

    /// @p problem is a line for the user.
    void failed(const QString &problem);

private:
    void wait();

    Tools m_tools;
    QString m_id;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    int m_interval; ///< Milliseconds to the next question.
};
