#pragma once

#include "tests/http/callbacklog.h"

#include <QObject>

/// A receiver whose slots write down in a log, which must outlive it, that they were called.
class LoggingReceiver : public QObject
{
    Q_OBJECT

public:
    explicit LoggingReceiver(CallbackLog *log)
        : m_log(log)
    {
    }

public Q_SLOTS:
    void done() { m_log->add(QStringLiteral("slot")); }
    void bytes(QByteArray body) { m_log->add(QStringLiteral("slot ") + QString::fromLatin1(body)); }

private:
    CallbackLog *m_log;
};
