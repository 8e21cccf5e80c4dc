#pragma once

#include <QObject>
#include <QSet>
#include <QString>

/// Records, for every network reply of this thread that an event reaches while it lives, what would
/// end the reply after a time.
class TimeoutWatch : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(TimeoutWatch)

public:
    TimeoutWatch();
    ~TimeoutWatch() override;

    /// How many replies there were.
    int replies() const;

    /// Which were seen: "transferTimeout", "timer", "HttpResponseTimeout".
    QSet<QString> timeouts() const;

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    QSet<QObject *> m_replies;
    QSet<QString> m_timeouts;
};
