#pragma once

#include "command.h"

/// Downloads an address into a file.
class Fetch : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Fetch)

public:
    Fetch(const Options &options, const Tools &tools);

    void start() override;

private:
    QString m_address;
    QString m_path;
    bool m_resume;
};
