#pragma once

#include "command.h"
#include "hostkit/speakjob.h"

/// Says a text.
class Say : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Say)

public:
    Say(const Options &options, const Tools &tools);

    void start() override;

private:
    Speech m_speech;
    QString m_path;
};

/// Recognises a recording.
class Recognize : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognize)

public:
    Recognize(const Options &options, const Tools &tools);

    void start() override;

private:
    QString m_recording; ///< A file or an address.
    Job::Form m_form;
};
