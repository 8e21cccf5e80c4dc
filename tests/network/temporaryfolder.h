#pragma once

#include <QByteArray>
#include <QTemporaryDir>

/// An empty folder that is the system's temporary one while this object lives.
class TemporaryFolder
{
    Q_DISABLE_COPY(TemporaryFolder)

public:
    TemporaryFolder();
    ~TemporaryFolder();

    /// The path of @p name in it.
    QString filePath(const QString &name) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_previous;
};
