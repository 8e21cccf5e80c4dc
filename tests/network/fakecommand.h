#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A console command that is found while this object lives, before any other of its name.
class FakeCommand
{
    Q_DISABLE_COPY(FakeCommand)

public:
    /// @p script: what a shell makes of the command.
    FakeCommand(const QString &name, const QByteArray &script);
    ~FakeCommand();

    /// The folder that the command is in.
    QString folder() const;

private:
    QTemporaryDir m_folder;
    QByteArray m_path;
};
