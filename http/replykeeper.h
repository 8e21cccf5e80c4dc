#pragma once

#include <QObject>
#include <QPointer>

class QNetworkReply;

/// For as long as it lives, deleteLater() has no effect on a reply; what was asked for then
/// happens afterwards.
class ReplyKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ReplyKeeper)

public:
    explicit ReplyKeeper(QNetworkReply *reply);
    ~ReplyKeeper() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QNetworkReply> m_reply;
    bool m_deletionAskedFor = false;
};
