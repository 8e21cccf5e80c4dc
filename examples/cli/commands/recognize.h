#pragma once

#include "commands/command.h"

/// Recognises recordings, one after the other.
class Recognize : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognize)

public:
    Recognize(const Options &options, const Tools &tools);

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

private:
    void onText(const QString &text);

    int m_place = 0; ///< Of the recording that is recognised now.
};
