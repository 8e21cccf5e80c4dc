#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A console command that is found while this object lives, before any other of its name. Besides
/// printing it writes to standard error, goes on after its output is closed, and fails.
class FakeCommand
{
    Q_DISABLE_COPY(FakeCommand)

public:
    /// Prints its arguments, each in brackets.
    explicit FakeCommand(const QString &name);

    /// Prints @p output.
    FakeCommand(const QString &name, const QByteArray &output);
    ~FakeCommand();

    /// Whether the command has run to its end.
    bool hasEnded() const;

private:
    QTemporaryDir m_folder;
    QByteArray m_path;         ///< Of programs, as it was before.
    QByteArray m_outerCommand; ///< The folder of the command that this one may hide.
};
