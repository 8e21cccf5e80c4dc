#pragma once

#include <QPointer>

class QNetworkReply;

/// Marks a reply as being in use: Qt is in one of its signals, or somebody waits for it. While a
/// keeper lives, a deleteLater() of the reply is held back; it takes effect when the keeper goes.
/// Belongs to the reply's thread.
class ReplyKeeper
{
    Q_DISABLE_COPY(ReplyKeeper)

public:
    /// Keeps @p reply; does nothing with null.
    explicit ReplyKeeper(QNetworkReply *reply);
    ~ReplyKeeper();

    /// Whether any keeper keeps @p reply, which lives on the calling thread.
    static bool isInUse(const QNetworkReply *reply);

private:
    class Filter;

    QPointer<QNetworkReply> m_reply;
    bool m_deletionAskedFor = false;
};
