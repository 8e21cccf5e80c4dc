#pragma once

#include "command.h"
#include "hostkit/outputfile.h"
#include "network/vonetworkintf.h"
#include "task.h"

/// The common part of short and long speech: the settings, and the file that gets the audio.
class Speech : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Speech)

public:
    ~Speech() override;

protected:
    Speech(const Options &options, const Tools &tools);

    TTSParams *params(); ///< Owned.
    const OutputFile &output() const;

    /// Prints the name of the file, which is written, as the result.
    void finishWithFile();

private:
    TTSParams m_params;
    QString m_path;
    OutputFile m_output;
};

/// Says a short text: the audio comes with the reply.
class ShortSpeech : public Speech
{
    Q_OBJECT
    Q_DISABLE_COPY(ShortSpeech)

public:
    ShortSpeech(const Options &options, const Tools &tools);

    void start() override;

private:
    void onAudio(TTS_STATUS status, const QString &audioBase64);

    bool m_anonymous;
};

/// Says a long text: a task whose audio is fetched when it is done.
class LongSpeech : public Speech
{
    Q_OBJECT
    Q_DISABLE_COPY(LongSpeech)

public:
    LongSpeech(const Options &options, const Tools &tools);

    void start() override;

private:
    void fetch(const QString &address);
    bool fetchInto(const QString &address, const QString &path);

    Task m_task;
};
