#include "http/replykeeper.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkReply>

namespace {

/// The event that asks a reply whether it is kept: a keeper answers it, the reply itself does not.
QEvent::Type question()
{
    static const int type = QEvent::registerEventType();
    return QEvent::Type(type);
}

} // namespace

ReplyKeeper::ReplyKeeper(QNetworkReply *reply)
    : m_reply(reply)
{
    if (reply)
        reply->installEventFilter(this);
}

ReplyKeeper::~ReplyKeeper()
{
    if (m_reply && m_deletionAskedFor) {
        m_reply->removeEventFilter(this);
        m_reply->deleteLater();
    }
}

bool ReplyKeeper::isInUse(QNetworkReply *reply)
{
    QEvent event(question());
    return QCoreApplication::sendEvent(reply, &event);
}

bool ReplyKeeper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == question())
        return true;
    if (event->type() != QEvent::DeferredDelete)
        return QObject::eventFilter(watched, event);
    m_deletionAskedFor = true;
    return true;
}
