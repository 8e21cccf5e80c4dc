#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A folder of a test's own. It is removed with its contents.
class TestFolder
{
    Q_DISABLE_COPY(TestFolder)

public:
    TestFolder();

    /// The path of @p name in the folder.
    QString path(const QString &name = QString()) const;

    /// Writes the file @p fileName, a full path; one that is there is replaced.
    static void write(const QString &fileName, const QByteArray &bytes);

    /// The contents of the file @p fileName, a full path; "<unreadable>" when it cannot be read.
    static QByteArray contents(const QString &fileName);

private:
    QTemporaryDir m_folder;
};
