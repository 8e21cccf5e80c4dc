#pragma once

#include <QObject>
#include <QPointer>

class QNetworkReply;

/// Marks a reply as being in use: Qt is in one of its signals, or somebody waits for it. For as
/// long as the keeper lives, deleteLater() has no effect on the reply; what was asked for then
/// happens afterwards.
class ReplyKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ReplyKeeper)

public:
    /// A null reply is not kept.
    explicit ReplyKeeper(QNetworkReply *reply);
    ~ReplyKeeper() override;

    /// Whether any keeper keeps @p reply.
    static bool isInUse(QNetworkReply *reply);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QNetworkReply> m_reply;
    bool m_deletionAskedFor = false;
};
