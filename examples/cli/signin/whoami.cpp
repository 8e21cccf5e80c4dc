#include "signin/whoami.h"

#include "hostkit/hostkit.h"
#include "hostkit/tokenkeeper.h"
#include "network/vonetworkintf.h"
#include "signin/signedin.h"

void WhoAmI::start()
{
    if (const Reason reason = kit()->tokens()->problem(); !reason.isNone())
        return Q_EMIT failed(reason);
    const Session session = kit()->tokens()->session();
    UserInfo user;
    user.user_id = session.userId;
    user.nickname = session.nickname;
    user.token_expire_time = session.tokenExpiry;
    user.refresh_expire_time = session.refreshExpiry;
    QJsonObject document = SignedIn::document(user);
    document.remove(QStringLiteral("pictureUrl")); // no session keeps it
    finish(SignedIn::text(user), document);
}
