#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// A server program in a process of its own, which ends with this object.
class ExternalServer
{
    Q_DISABLE_COPY(ExternalServer)

public:
    /// @p program is looked for in PATH and in the folders for system programs.
    explicit ExternalServer(const QString &program);
    ~ExternalServer();

    /// A port of 127.0.0.1 that is free now.
    static quint16 freePort();

    /// Starts the program and waits until it takes connections on @p port. False when it is not
    /// installed, or ends before that; errorText() says why.
    bool start(const QStringList &arguments, quint16 port);

    /// Ends the process at once, without letting it finish anything.
    void kill();

    QString errorText() const { return m_errorText; }

private:
    const QString m_program;
    QProcess m_process;
    QString m_errorText;
};
