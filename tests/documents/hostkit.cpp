// The samples of docs/hostkit.md, and of the README.

#include "hostkit/hostkit.h"
#include "hostkit/cataloguejobs.h"
#include "hostkit/failurereasons.h"
#include "hostkit/recognizejob.h"
#include "hostkit/signinjobs.h"
#include "hostkit/speakjob.h"
#include "hostkit/stockpictures.h"

#include <QCoreApplication>
#include <QDebug>

int runHost(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const FailureReasons reasons;
    HostKit kit(QStringLiteral("my application"));
    Reason::setHint(Reason::Kind::SignIn, QStringLiteral(": see the page Account"));
    return QCoreApplication::exec();
}

void speak(HostKit *kit, const QString &text, const QString &path)
{
    Speech speech;
    speech.text = text;
    speech.voice = QStringLiteral("rms");
    auto *job = new SpeakJob(kit, speech, path);
    QObject::connect(job, &SpeakJob::succeeded, job, &QObject::deleteLater);
    QObject::connect(job, &Job::failed, job, [job](const Reason &reason) {
        qWarning().noquote() << reason.line();
        delete job;
    });
    job->setTimeout(600000);
    job->start();
}

void recognize(HostKit *kit, const QString &recording)
{
    auto *job = new RecognizeJob(kit, recording, Job::Form::ByLength, kit);
    QObject::connect(job, &RecognizeJob::succeeded, job,
                     [](const QString &text) { qInfo().noquote() << text; });
    QObject::connect(job, &Job::failed, job,
                     [](const Reason &reason) { qWarning().noquote() << reason.line(); });
    job->start();
}

void goOnSpeaking(HostKit *kit, const QString &task, const QString &path)
{
    auto *job = new SpeakJob(kit, {}, path, kit);
    job->takeUp(task); // what TaskJob::named() told, perhaps to an earlier run
    job->start();
}

void showVoices(HostKit *kit)
{
    auto *job = new VoicesJob(kit, kit);
    QObject::connect(job, &VoicesJob::succeeded, job, [job](const QVector<DubInfo> &voices) {
        for (const DubInfo &voice : voices)
            qInfo() << voice.name << StockPictures::path(voice.avatar);
        job->deleteLater();
    });
    job->start();
}

void signIn(HostKit *kit)
{
    auto *job = new CodeSignInJob(kit, kit);
    QObject::connect(job, &CodeSignInJob::codeReady, job,
                     [](const QString &picture, const QDateTime &expires) {
                         qInfo() << "show" << picture << "until" << expires;
                     });
    QObject::connect(job, &SignInJob::succeeded, job,
                     [](const UserInfo &user) { qInfo() << "welcome" << user.nickname; });
    job->start();
}
