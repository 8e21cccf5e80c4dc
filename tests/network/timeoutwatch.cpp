#include "tests/network/timeoutwatch.h"

#include "tests/network/text.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QTimer>

TimeoutWatch::TimeoutWatch() { QCoreApplication::instance()->installEventFilter(this); }

TimeoutWatch::~TimeoutWatch() = default;

int TimeoutWatch::replies() const { return m_replies.size(); }

QSet<QString> TimeoutWatch::timeouts() const { return m_timeouts; }

bool TimeoutWatch::eventFilter(QObject *object, QEvent *)
{
    const auto *reply = qobject_cast<QNetworkReply *>(object);
    if (!reply)
        return false;
    m_replies.insert(object);
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    if (reply->request().transferTimeout() != 0)
        m_timeouts.insert("transferTimeout"_s);
#endif
    const QList<QTimer *> timers = reply->findChildren<QTimer *>();
    for (const QTimer *timer : timers) {
        if (timer->isActive())
            m_timeouts.insert("timer"_s);
    }
    const QList<QObject *> children = reply->findChildren<QObject *>();
    for (const QObject *child : children) {
        if (child->inherits("HttpResponseTimeout"))
            m_timeouts.insert("HttpResponseTimeout"_s);
    }
    return false;
}
