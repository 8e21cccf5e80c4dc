#pragma once

#include "network/vonetworkintf.h"
#include "recognition.h"
#include "task.h"

/// Recognises a short recording: the text comes with the reply.
class ShortRecognition : public Recognition
{
    Q_OBJECT
    Q_DISABLE_COPY(ShortRecognition)

public:
    ShortRecognition(const Options &options, const Tools &tools);

protected:
    void recognize(const QString &address) override;

private:
    void onText(SHORT_STT_STATUS status, const QString &text);
};

/// Recognises a long recording: a task that is asked after until it is done.
class LongRecognition : public Recognition
{
    Q_OBJECT
    Q_DISABLE_COPY(LongRecognition)

public:
    LongRecognition(const Options &options, const Tools &tools);

protected:
    void recognize(const QString &address) override;

private:
    Task m_task;
};
