#include "speechcommands.h"

#include "console.h"
#include "hostkit/recognizejob.h"
#include "options.h"

namespace {

Job::Form formOf(const Options &options)
{
    return options.longForm ? Job::Form::Long : Job::Form::Short;
}

Speech speechOf(const Options &options)
{
    Speech speech;
    speech.text = options.text;
    speech.voice = options.voice;
    speech.sampleRate = options.sampleRate;
    speech.form = formOf(options);
    speech.isAnonymous = options.anonymous;
    return speech;
}

} // namespace

Say::Say(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_speech(speechOf(options))
    , m_path(options.output)
{
}

void Say::start()
{
    auto *job = new SpeakJob(kit(), m_speech, m_path, this);
    connect(job, &SpeakJob::succeeded, this, [this](const QString &path, qint64 bytes) {
        finish({}, {{QStringLiteral("file"), path}, {QStringLiteral("bytes"), bytes}});
    });
    run(job);
}

Recognize::Recognize(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_recording(options.recording)
    , m_form(formOf(options))
{
}

void Recognize::start()
{
    auto *job = new RecognizeJob(kit(), m_recording, m_form, this);
    connect(job, &RecognizeJob::succeeded, this, [this](const QString &text) {
        finish(Console::onOneLine(text) + QLatin1Char('\n'), {{QStringLiteral("text"), text}});
    });
    run(job, QStringLiteral("recognising"));
}
