#include "signin/signout.h"

#include "hostkit/hostkit.h"
#include "hostkit/sessionfile.h"
#include "hostkit/tokenkeeper.h"

void SignOut::start()
{
    const bool wasSignedIn = SessionFile::exists();
    if (!kit()->tokens()->signOut())
        Q_EMIT failed({Reason::Kind::File, QStringLiteral("the session could not be removed")});
    else
        finish(wasSignedIn ? QStringLiteral("signed out\n")
                           : QStringLiteral("nobody was signed in\n"),
               {});
}
