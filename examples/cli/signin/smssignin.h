#pragma once

#include "commands/command.h"
#include "terminal/linereader.h"

class SmsSignInJob;

/// Signs in by a code that the service sends to a phone and the user types.
class SmsSignIn : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(SmsSignIn)

public:
    SmsSignIn(const Options &options, const Tools &tools);

    void start() override;

private:
    void askForCode();
    void onCode(const QString &code);

    LineReader m_reader;
    SmsSignInJob *m_job = nullptr; ///< A child.
};
