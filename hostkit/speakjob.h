#pragma once

#include "hostkit/outputfile.h"
#include "hostkit/taskjob.h"

#include <QString>

/// What is to be spoken, and how.
struct Speech
{
    QString text;                           ///< To be spoken.
    QString voice;                          ///< DubInfo::voiceParam.
    QString format = QStringLiteral("wav"); ///< The service's name of the audio format.
    qint32 sampleRate = 16000;              ///< Samples per second.
    qint32 volume = 50;                     ///< 0 to 100.
    qint32 speed = 0;                       ///< -500 to 500; 0 is the voice's own.
    qint32 pitch = 0;                       ///< -500 to 500; 0 is the voice's own.
    Job::Form form = Job::Form::ByLength;   ///< In one answer or as a task.
    bool isAnonymous = false;               ///< Without a token: in one answer only, see Limits.
};

/// Speaks a text into a file, which appears whole or not at all.
class SpeakJob : public TaskJob
{
    Q_OBJECT
    Q_DISABLE_COPY(SpeakJob)

public:
    /// The audio goes into the file @p path; an older one stays until it is there. A job that takes
    /// up a task needs no @p speech. @p kit outlives the job.
    SpeakJob(HostKit *kit, const Speech &speech, const QString &path, QObject *parent = nullptr);

    /// Why @p speech cannot be spoken, as far as that shows without the service; none: it can.
    static Reason problem(const Speech &speech);

Q_SIGNALS:
    /// The file is written; it has @p bytes bytes.
    void succeeded(const QString &path, qint64 bytes);

protected:
    /// Checks the limits, and asks the service.
    void beginAnew() override;
    void askAfter(const QString &id, qint64 token) override;
    void onResult(const QString &address) override;

private:
    void speakShort(qint64 token);
    void speakLong(qint64 token);
    void onAudio(int status, const QString &base64);
    void succeed();

    Speech m_speech;
    QString m_path;
    OutputFile m_output;
};
