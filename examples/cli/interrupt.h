#pragma once

#include <QObject>

/// Turns the user's Ctrl-C, and a request to terminate, into a signal that arrives in whatever
/// event loop is running, nested ones included. One at a time; without one, and when the user
/// repeats it, the system ends the program itself.
class Interrupt : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Interrupt)

public:
    Interrupt();
    ~Interrupt() override;

    /// The system ends the program itself from here on, and at once if a signal has come that no
    /// loop was told of. For work that does not return to the loop in time.
    static void leaveToSystem();

Q_SIGNALS:
    /// The program is to end with @p status.
    void interrupted(int status);
};
