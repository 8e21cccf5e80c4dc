#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A console command that is found while this object lives, before any other of its name.
class FakeCommand
{
    Q_DISABLE_COPY(FakeCommand)

public:
    /// A shell runs @p script as the command.
    FakeCommand(const QString &name, const QByteArray &script);
    ~FakeCommand();

    /// The folder of the command.
    QString folder() const;

private:
    QTemporaryDir m_folder;
    QByteArray m_path;
};
