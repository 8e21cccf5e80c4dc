#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A folder of a test's own, removed with its contents.
class TestFolder
{
    Q_DISABLE_COPY(TestFolder)

public:
    TestFolder();

    /// Where @p name is in the folder.
    QString path(const QString &name = QString()) const;

    /// Writes a file, which replaces one that is there.
    static void write(const QString &fileName, const QByteArray &bytes);

    /// The whole of a file; "<unreadable>" when there is none.
    static QByteArray contents(const QString &fileName);

private:
    QTemporaryDir m_folder;
};
