#include "signin.h"

#include "console.h"
#include "hostkit/session.h"
#include "hostkit/sessionfile.h"
#include "network/vonetworkintf.h"

namespace {

QString text(const Session &session)
{
    const QString until = session.refreshExpiry.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return QStringLiteral("signed in as %1 until %2\n")
        .arg(Console::onOneLine(session.nickname), until);
}

QString inUtc(const QDateTime &time) { return time.toUTC().toString(Qt::ISODate); }

// The printed document has no tokens: others may see it.
QJsonObject document(const UserInfo &user)
{
    return {{QStringLiteral("userId"), user.user_id},
            {QStringLiteral("nickname"), user.nickname},
            {QStringLiteral("pictureUrl"), user.header_url},
            {QStringLiteral("tokenExpires"), inUtc(user.token_expire_time)},
            {QStringLiteral("sessionExpires"), inUtc(user.refresh_expire_time)}};
}

} // namespace

// Checks that the session can be kept before the user is asked for anything.
void SignIn::start()
{
    if (const QString problem = SessionFile::problem(); !problem.isEmpty())
        Q_EMIT failed(problem);
    else
        signIn();
}

void SignIn::finishWith(const UserInfo &user)
{
    const Session session = Session::from(user);
    if (!session.isValid())
        Q_EMIT failed(QStringLiteral("the service sent no usable session"));
    else if (const QString problem = SessionFile::save(session); !problem.isEmpty())
        Q_EMIT failed(QStringLiteral("the session could not be written: %1").arg(problem));
    else
        finish(text(session), document(user));
}
