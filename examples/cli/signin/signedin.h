#pragma once

class QJsonObject;
class QString;
struct UserInfo;

/// What is printed of a user who has signed in. It has no tokens: others may see it.
namespace SignedIn {

QString text(const UserInfo &user);
QJsonObject document(const UserInfo &user);

} // namespace SignedIn
