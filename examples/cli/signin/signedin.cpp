#include "signin/signedin.h"

#include "network/vonetworkintf.h"
#include "terminal/console.h"

#include <QJsonObject>

namespace {

QString inUtc(const QDateTime &time) { return time.toUTC().toString(Qt::ISODate); }

} // namespace

QString SignedIn::text(const UserInfo &user)
{
    const QString until = user.refresh_expire_time.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return QStringLiteral("signed in as %1 until %2\n")
        .arg(Console::onOneLine(user.nickname), until);
}

QJsonObject SignedIn::document(const UserInfo &user)
{
    return {{QStringLiteral("userId"), user.user_id},
            {QStringLiteral("nickname"), user.nickname},
            {QStringLiteral("pictureUrl"), user.header_url},
            {QStringLiteral("tokenExpires"), inUtc(user.token_expire_time)},
            {QStringLiteral("sessionExpires"), inUtc(user.refresh_expire_time)}};
}
