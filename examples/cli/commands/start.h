#pragma once

#include "commands/command.h"
#include "commands/localprogram.h"

/// Runs the local service until the user ends it, and has vospeak trust it.
class Start : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Start)

public:
    Start(const Options &options, const Tools &tools);

    static QString prepare(Options &options);

    void start() override;

private:
    void onOutput();
    void onReady(const QString &line);
    void onEnd();

    LocalProgram m_service;
    bool m_isReady = false;
};
