#include "qrsignin.h"

#include "codepicture.h"
#include "console.h"
#include "hostkit/signinjobs.h"
#include "progress.h"
#include "qrcode.h"
#include "qrdrawing.h"
#include "signedin.h"
#include "terminal.h"

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
        Console::show(QrDrawing::draw(*modules, Terminal::is(stderr)));
    Console::show(QStringLiteral("Scan this code to sign in; its picture is %1\n").arg(picture));
}
