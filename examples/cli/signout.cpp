#include "signout.h"

#include "hostkit/sessionfile.h"

void SignOut::start()
{
    const bool wasSignedIn = SessionFile::exists();
    if (!SessionFile::remove())
        Q_EMIT failed(QStringLiteral("the session could not be removed"));
    else
        finish(wasSignedIn ? QStringLiteral("signed out\n")
                           : QStringLiteral("nobody was signed in\n"),
               {});
}
