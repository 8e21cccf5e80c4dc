#pragma once

#include "command.h"
#include "network/vonetworkintf.h"
#include "outputfile.h"
#include "poll.h"

/// Says a short text: the audio comes with the reply.
class ShortSpeech : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(ShortSpeech)

public:
    ShortSpeech(const Options &options, VoNetworkIntf *service);

    void start() override;

private:
    void onAudio(TTS_STATUS status, const QString &audioBase64);

    VoNetworkIntf *m_service;
    TTSParams m_params;
    bool m_anonymous;
    qint64 m_token;
    OutputFile m_output;
};

/// Says a long text: a task whose audio is fetched when it is done.
class LongSpeech : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(LongSpeech)

public:
    LongSpeech(const Options &options, VoNetworkIntf *service, Progress *progress);

    void start() override;

private:
    void onTask(LONG_TTS_STATUS status, const QString &taskId);
    void ask();
    void onStatus(LONG_TTS_STATUS status, const QString &taskId, const QString &requestId,
                  const QString &audioUrl);
    void fetch(const QString &address);
    bool fetchInto(const QString &address, const QString &path);

    VoNetworkIntf *m_service;
    Progress *m_progress;
    TTSParams m_params;
    qint64 m_token;
    OutputFile m_output;
    QString m_taskId;
    Poll m_poll;
};
