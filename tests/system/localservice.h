#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The local service in a process of its own, with a data folder of its own, where the library's
/// built-in base address points. It ends with the object.
class LocalService
{
    Q_DISABLE_COPY(LocalService)

public:
    LocalService();
    ~LocalService();

    /// Its development token, which it takes without a sign-in: no double can hold it.
    static qint64 token();

    /// Waits until it is ready. False, with the reason in the test's log, when it never is. May be
    /// called again after stop(): the data folder stays.
    bool start(const QStringList &furtherArguments = {});

    /// Starts without the development token: only signing in brings tokens then.
    bool startWithoutDevelopmentToken(const QStringList &furtherArguments = {});

    /// Sends the signal.
    void send(int signal);

    /// Sends the signal and waits for the end. Returns the exit status; -1: a crash or no end.
    int stop(int signal);

    /// The line that says that it is ready, with its newline.
    QByteArray readyLine() const;

    /// Waits for the next line with @p part on its standard output and takes the output up to the
    /// end of that line. Returns the line without its newline; empty: there was none.
    QByteArray takeLine(const QByteArray &part);

    /// The file of the authority that signed its certificate.
    QString authority() const;

    /// A file in its data folder.
    QString dataFile(const QString &name) const;

    /// What it wrote to standard error so far.
    QByteArray log() const;

    /// --ca and --token, as vospeak needs them.
    QStringList access() const;

    /// The program, for a run that start() does not fit.
    static QString program();

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QByteArray m_readyLine;
    QByteArray m_out; ///< After that line, and not taken yet.
};
