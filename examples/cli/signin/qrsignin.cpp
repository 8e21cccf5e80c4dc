#include "signin/qrsignin.h"

#include "commandline/authority.h"
#include "commands/localprogram.h"
#include "hostkit/hostkit.h"
#include "hostkit/signinjobs.h"
#include "signin/codepicture.h"
#include "signin/qrcode.h"
#include "signin/qrdrawing.h"
#include "signin/signedin.h"
#include "terminal/console.h"
#include "terminal/progress.h"
#include "terminal/terminal.h"

#include <QImage>
#include <QProcess>

#include <cstdio>

namespace {

const QLatin1String byPhone("Scan this code to sign in; its picture is %1\n");

// No phone reaches such a service.
const QLatin1String
    onThisMachine("Open the sign-in page that vo-localservice has just printed in a browser here.\n"
                  "If the browser warns, have it trust %1:\n"
                  "%2/ says how. The code is in %3\n");

QString wayIn(const Options &options, const QString &picture)
{
    if (!LocalProgram::isAsked())
        return QString(byPhone).arg(picture);
    const QString authority = Authority::of(options);
    return QString(onThisMachine)
        .arg(authority.isEmpty() ? QStringLiteral("tls/authority.pem of the service's data folder")
                                 : Console::onOneLine(authority),
             HostKit::serviceAddress(), picture);
}

} // namespace

void QrSignIn::start()
{
    m_job = new CodeSignInJob(kit(), this);
    connect(m_job, &CodeSignInJob::codeReady, this, &QrSignIn::show);
    connect(m_job, &SignInJob::succeeded, this, [this](const UserInfo &user) {
        finish(SignedIn::text(user), SignedIn::document(user));
    });
    run(m_job);
}

void QrSignIn::show(const QString &picture)
{
    const QImage image = CodePicture::read(picture);
    if (image.isNull()) {
        delete m_job;
        Q_EMIT failed({Reason::Kind::BadAnswer,
                       QStringLiteral("no usable picture of the code came or could be written")});
        return;
    }
    progress()->clear();
    if (const auto modules = QrCode::read(image))
        draw(*modules);
    Console::show(wayIn(options(), picture));
    if (options().open && !QProcess::startDetached(QStringLiteral("xdg-open"), {picture}))
        Console::complain(QStringLiteral("xdg-open is missing; open the picture yourself"));
}

void QrSignIn::draw(const QrCode &code) const
{
    const int columns = Terminal::columns(stderr);
    if (columns > 0 && columns < QrDrawing::columns(code))
        Console::show(QStringLiteral("The code needs a terminal of %1 columns; or see --open.\n")
                          .arg(QrDrawing::columns(code)));
    else
        Console::show(QrDrawing::draw(code, Terminal::colours(stderr)));
}
