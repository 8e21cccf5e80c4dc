#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

/// How a program ended, and its output.
struct Outcome
{
    int status = -1; ///< Exit status; -1: it crashed or did not end.
    QByteArray out;
    QByteArray err;
};

/// A program under test in its own process. It is killed when the object goes.
class Program
{
    Q_DISABLE_COPY(Program)

public:
    /// Starts vospeak. Its standard error goes to the file @p errFile if one is given, its standard
    /// output to @p outFile.
    explicit Program(const QStringList &arguments, const QString &errFile = QString(),
                     const QString &outFile = QString());
    ~Program();

    /// Waits in an event loop for the end.
    Outcome outcome();

    void signal(int number) const;

    /// The file that is run.
    static QString path();

    /// Writes @p text to its standard input.
    void type(const QByteArray &text);

    /// Ends its standard input.
    void endInput();

    /// What it has written to standard error so far. Grows while an event loop runs.
    QByteArray err();

private:
    QProcess m_process;
    QByteArray m_err;
};

/// Runs vospeak to its end.
Outcome vospeak(const QStringList &arguments);

/// The words of @p line, which are separated by single blanks.
QStringList arguments(const char *line);

/// Whether @p err is one line for the user, or for a program that reads JSON, and nothing else.
bool isOneLine(const QByteArray &err);
