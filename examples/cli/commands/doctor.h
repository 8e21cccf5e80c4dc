#pragma once

#include "commands/command.h"

#include <QVector>

/// Looks at everything that the other commands need, and says what to do about what is missing.
class Doctor : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Doctor)

public:
    using Command::Command;

    void start() override;

private:
    struct Finding
    {
        QString name;
        bool isFine = false;
        QString text;
    };

    void report(const Reason &reason);
    void look(const Reason &service);

    QVector<Finding> m_findings;
};
