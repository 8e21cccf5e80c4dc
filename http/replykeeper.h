#pragma once

#include <QObject>
#include <QPointer>

class QNetworkReply;

/// Marks a reply as being in use: Qt is in one of its signals, or somebody waits for it. While a
/// keeper lives, a deleteLater() of the reply is held back; it takes effect when the keeper goes.
class ReplyKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ReplyKeeper)

public:
    /// Keeps @p reply; does nothing with null.
    explicit ReplyKeeper(QNetworkReply *reply);
    ~ReplyKeeper() override;

    /// Whether any keeper keeps @p reply, which is not null.
    static bool isInUse(QNetworkReply *reply);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QNetworkReply> m_reply;
    bool m_deletionAskedFor = false;
};
