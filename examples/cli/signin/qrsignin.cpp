#include "signin/qrsignin.h"

#include "hostkit/signinjobs.h"
#include "signin/codepicture.h"
#include "signin/qrcode.h"
#include "signin/qrdrawing.h"
#include "signin/signedin.h"
#include "terminal/console.h"
#include "terminal/progress.h"
#include "terminal/terminal.h"

#include <QImage>

#include <cstdio>

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
        Console::show(QrDrawing::draw(*modules, Terminal::colours(stderr)));
    Console::show(QStringLiteral("Scan this code to sign in; its picture is %1\n").arg(picture));
}
