#pragma once

#include <QObject>
#include <QSet>
#include <QString>

/// Looks, while it lives, at every network reply of this thread that an event reaches, and writes
/// down what would end it after a time.
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
