#pragma once

#include <QMetaMethod>
#include <QObject>

class QNetworkReply;

/// Has a small body at hand when the head of its request is written, so that TLS sends both at
/// once.
///
/// Besides, it keeps a request from being sent twice when Qt follows a redirect that comes at once.
///
/// Qt writes the head before it asks the thread of the reply for the body, which thus goes out in a
/// segment of its own. TCP keeps that back until the server has acknowledged the head, and servers
/// take their time over it: some 40 ms for every request on a connection that is kept. The reply is
/// therefore made to give the body away just before the request begins, by what Qt itself calls for
/// it then.
///
/// This leans on internals of Qt 5.14 and 5.15, which are frozen: two signals and a slot of the
/// reply that the access manager makes, found by their names. Where they are missing, with another
/// Qt or with VONETWORK_PROMPT_BODIES off, nothing is done; the same bytes go out, later.
class PromptBody : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(PromptBody)

public:
    /// To be called on the thread of @p reply, before that is back in its event loop. Does nothing
    /// without a reply, unless the body has between 1 byte and 16 KiB, which is what Qt takes of it
    /// at a time, or the request follows redirects.
    static void arrange(QNetworkReply *reply, int bodySize);

private Q_SLOTS:
    void give();
    void startOver();

private:
    /// What a class of replies has for it; invalid where not all of it is there.
    struct Internals
    {
        QMetaMethod begin; ///< Signal: the network thread is to send the request.
        QMetaMethod body;  ///< Signal: carries some of the body to that thread.
        QMetaMethod give;  ///< Slot: emits it, for at most so many bytes.
    };

    PromptBody(QNetworkReply *reply, const Internals &internals, bool isSmall);

    static Internals lookUp(const QMetaObject *type);
    static const Internals &internalsOf(const QMetaObject *type);
    void listen();

    QNetworkReply *const m_reply; // the parent
    const Internals m_internals;
    const bool m_isSmall; ///< There is a body to hand over.
};
