#pragma once

#include <QObject>

/// Turns the user's Ctrl-C, and a request to terminate, into a signal that is emitted in whatever
/// event loop is running, nested ones included. There is at most one object of this class. Without
/// one, and at a repeated Ctrl-C, the system ends the program itself.
class Interrupt : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Interrupt)

public:
    Interrupt();
    ~Interrupt() override;

    /// Lets the system end the program itself from now on, and at once if a signal has come that
    /// has not been emitted yet. For work that may keep the program from its event loop.
    static void leaveToSystem();

Q_SIGNALS:
    /// The program is to end with @p status, an ExitStatus.
    void interrupted(int status);
};
