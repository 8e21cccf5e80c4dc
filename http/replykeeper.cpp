#include "http/replykeeper.h"

#include <QEvent>
#include <QNetworkReply>

ReplyKeeper::ReplyKeeper(QNetworkReply *reply)
    : m_reply(reply)
{
    reply->installEventFilter(this);
}

ReplyKeeper::~ReplyKeeper()
{
    if (m_reply && m_deletionAskedFor) {
        m_reply->removeEventFilter(this);
        m_reply->deleteLater();
    }
}

bool ReplyKeeper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::DeferredDelete)
        return QObject::eventFilter(watched, event);
    m_deletionAskedFor = true;
    return true;
}
