#pragma once

#include <QProcess>

/// The local service in a process, which ends with this object and, on Linux, with the thread that
/// starts it, even where that is killed.
class LocalProgram : public QProcess
{
    Q_OBJECT
    Q_DISABLE_COPY(LocalProgram)

public:
    using QProcess::QProcess;

    /// Waits some seconds for the end, of which nobody is told.
    ~LocalProgram() override;

    /// The path of the local service of the same build or installation, or of the first one that
    /// the system finds. Empty: there is none.
    static QString path();

    /// Whether the service that is asked is one of this machine.
    static bool isAsked();

    /// Starts it, at the port where the library asks for it.
    void listen();

protected:
    void setupChildProcess() override;
};
