#include "http/promptbody.h"

#include <QNetworkReply>
#include <QNetworkRequest>

namespace {

constexpr int mostBytes = 16 * 1024;

// The access manager's own policy is an attribute of the reply's request, too.
bool followsRedirects(const QNetworkReply *reply)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    constexpr auto follow = QNetworkRequest::FollowRedirectsAttribute;
    QT_WARNING_POP
    const QNetworkRequest request = reply->request();
    return request.attribute(QNetworkRequest::RedirectPolicyAttribute).toInt()
               != QNetworkRequest::ManualRedirectPolicy
           || request.attribute(follow).toBool();
}

} // namespace

void PromptBody::arrange(QNetworkReply *reply, int bodySize)
{
    if (!reply)
        return;
    const bool isSmall = bodySize >= 1 && bodySize <= mostBytes;
    if (!isSmall && !followsRedirects(reply))
        return;
    const Internals &internals = internalsOf(reply->metaObject());
    if (internals.begin.isValid())
        new PromptBody(reply, internals, isSmall); // the reply's child
}

PromptBody::PromptBody(QNetworkReply *reply, const Internals &internals, bool isSmall)
    : QObject(reply)
    , m_reply(reply)
    , m_internals(internals)
    , m_isSmall(isSmall)
{
    listen();
    connect(reply, &QNetworkReply::redirected, this, &PromptBody::startOver);
}

PromptBody::Internals PromptBody::lookUp(const QMetaObject *type)
{
#if defined(VONETWORK_PROMPT_BODIES) && QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    const int begin = type->indexOfSignal("startHttpRequest()");
    const int body = type->indexOfSignal("haveUploadData(qint64,QByteArray,bool,qint64)");
    const int give = type->indexOfSlot("wantUploadDataSlot(qint64)");
    if (begin >= 0 && body >= 0 && give >= 0)
        return {type->method(begin), type->method(body), type->method(give)};
#else
    Q_UNUSED(type)
#endif
    return {};
}

// A manager makes replies of one class, so the last one is all that a thread remembers.
const PromptBody::Internals &PromptBody::internalsOf(const QMetaObject *type)
{
    thread_local const QMetaObject *known = nullptr;
    thread_local Internals internals;
    if (type != known) {
        internals = lookUp(type);
        known = type;
    }
    return internals;
}

void PromptBody::listen()
{
    if (!m_isSmall)
        return;
    static const int slot = staticMetaObject.indexOfSlot("give()");
    QMetaObject::connect(m_reply, m_internals.begin.methodIndex(), this, slot,
                         Qt::DirectConnection);
}

// The receivers are in the network thread and get both in this order: the body, since this comes
// first among the connections, and the call to begin.
void PromptBody::give()
{
    m_internals.give.invoke(m_reply, Qt::DirectConnection, Q_ARG(qint64, mostBytes));
}

// Qt begins anew when it follows a redirect. What has sent the request before may still be there
// then, and would send it once more, if the answer came soon enough.
void PromptBody::startOver()
{
    disconnect(m_reply, m_internals.begin, nullptr, QMetaMethod());
    disconnect(m_reply, m_internals.body, nullptr, QMetaMethod());
    listen();
}
