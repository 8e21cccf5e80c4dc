#pragma once

#include "hostkit/job.h"

#include <QByteArray>
#include <QDir>
#include <QList>
#include <QVector>

#include <functional>
#include <memory>

class HostKit;

/// A kind of job, how the tests make one, and what a service answers that does what is asked.
struct JobKind
{
    const char *name;
    QList<QByteArray> answers;
    std::function<std::unique_ptr<Job>(HostKit *kit, const QDir &folder)> make;
};

/// All kinds. They read and write files in the folder, where "recording.wav" has to be, and are for
/// a user who is signed in.
QVector<JobKind> jobKinds();

/// Signs a user in, as far as the file of the session goes; the token is 17, and ends after
/// @p secondsLeft.
void signIn(qint64 secondsLeft = 3600);

/// The service's answer with a sign-in code that ends after @p secondsLeft; its picture comes next.
QByteArray signInCode(qint64 secondsLeft = 60);

/// Writes a WAV file of 8-bit silence.
void writeRecording(const QString &path, double seconds = 1);
