#include "http/promptbody.h"

#include <QNetworkReply>

namespace {

constexpr int mostBytes = 16 * 1024;

/// What a class of replies has; invalid where it does not have all of it.
struct Internals
{
    QMetaMethod begin; ///< Emitted before the request goes to the network thread.
    QMetaMethod give;  ///< Hands so many bytes of the body to that thread.
};

Internals internalsOf(const QMetaObject *type)
{
#if defined(VONETWORK_PROMPT_BODIES) && QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const int begin = type->indexOfSignal("startHttpRequest()");
    const int hand = type->indexOfSignal("haveUploadData(qint64,QByteArray,bool,qint64)");
    const int give = type->indexOfSlot("wantUploadDataSlot(qint64)");
    if (begin >= 0 && hand >= 0 && give >= 0)
        return {type->method(begin), type->method(give)};
#else
    Q_UNUSED(type)
#endif
    return {};
}

// A manager makes replies of one class, so the last one is all that needs to be remembered.
const Internals &knownInternalsOf(const QMetaObject *type)
{
    thread_local const QMetaObject *known = nullptr;
    thread_local Internals internals;
    if (type != known) {
        internals = internalsOf(type);
        known = type;
    }
    return internals;
}

} // namespace

void PromptBody::arrange(QNetworkReply *reply, int bodySize)
{
    if (!reply || bodySize < 1 || bodySize > mostBytes)
        return;
    const Internals &internals = knownInternalsOf(reply->metaObject());
    if (internals.begin.isValid())
        new PromptBody(reply, internals.begin, internals.give); // the reply's child
}

PromptBody::PromptBody(QNetworkReply *reply, const QMetaMethod &begin, const QMetaMethod &give)
    : QObject(reply)
    , m_give(give)
{
    static const int slot = staticMetaObject.indexOfSlot("give()");
    QMetaObject::connect(reply, begin.methodIndex(), this, slot, Qt::DirectConnection);
}

void PromptBody::give()
{
    m_give.invoke(parent(), Qt::DirectConnection, Q_ARG(qint64, mostBytes));
}
