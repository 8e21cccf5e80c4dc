#include "tests/support/testfolder.h"

#include <QFile>

TestFolder::TestFolder()
{
    if (!m_folder.isValid())
        qFatal("cannot make a folder: %s", qPrintable(m_folder.errorString()));
}

QString TestFolder::path(const QString &name) const { return m_folder.filePath(name); }

void TestFolder::write(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(fileName));
}

QByteArray TestFolder::contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}
