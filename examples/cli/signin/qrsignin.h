#pragma once

#include "commands/command.h"

class CodeSignInJob;
class QrCode;

/// Signs in by a code that the user scans with a phone, or by the page to which it leads.
class QrSignIn : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(QrSignIn)

public:
    using Command::Command;

    void start() override;

private:
    void show(const QString &picture);
    void draw(const QrCode &code) const;

    CodeSignInJob *m_job = nullptr; ///< A child.
};
