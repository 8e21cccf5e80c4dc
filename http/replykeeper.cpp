#include "http/replykeeper.h"

#include "http/ofthisthread.h"

#include <QEvent>
#include <QNetworkReply>

#include <algorithm>
#include <vector>

/// One for each thread, since a request would notice the cost of one for each keeper. It stays with
/// a reply that was ever kept, and lets the deletion of a reply pass that is not kept now.
class ReplyKeeper::Filter : public QObject
{
public:
    /// The keeper that came last; null: none.
    ReplyKeeper *keeperOf(const QObject *reply) const
    {
        const auto found =
            std::find_if(keepers.crbegin(), keepers.crend(),
                         [=](const auto *keeper) { return keeper->m_reply == reply; });
        return found == keepers.crend() ? nullptr : *found;
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::DeferredDelete) {
            if (ReplyKeeper *keeper = keeperOf(watched)) {
                keeper->m_deletionAskedFor = true;
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }

    std::vector<ReplyKeeper *> keepers;
};

ReplyKeeper::ReplyKeeper(QNetworkReply *reply)
    : m_reply(reply)
{
    if (!reply)
        return;
    Filter &filter = ofThisThread<Filter>();
    filter.keepers.push_back(this);
    reply->installEventFilter(&filter);
}

ReplyKeeper::~ReplyKeeper()
{
    auto &keepers = ofThisThread<Filter>().keepers;
    keepers.erase(std::remove(keepers.begin(), keepers.end(), this), keepers.end());
    if (m_reply && m_deletionAskedFor)
        m_reply->deleteLater();
}

bool ReplyKeeper::isInUse(const QNetworkReply *reply)
{
    return ofThisThread<Filter>().keeperOf(reply) != nullptr;
}
