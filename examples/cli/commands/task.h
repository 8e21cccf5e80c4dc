#pragma once

#include "commands/command.h"

class TaskJob;

/// Takes up a task that an earlier run has left at the service.
class Task : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Task)

public:
    Task(const Options &options, const Tools &tools);

    static QString read(Options &options);
    static QString prepare(Options &options);

    void start() override;

private:
    void takeUp(TaskJob *job);
    void hear();
    void save();
};
