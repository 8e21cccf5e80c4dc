#include "tests/network/fakecommand.h"

#include <QFile>

FakeCommand::FakeCommand(const QString &name, const QByteArray &script)
    : m_path(qgetenv("PATH"))
{
    QFile file(m_folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write("#!/bin/sh\n" + script + '\n') < 0)
        qFatal("cannot write %s", qPrintable(file.fileName()));
    file.close();
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    qputenv("PATH", QFile::encodeName(m_folder.path()) + ':' + m_path);
}

FakeCommand::~FakeCommand() { qputenv("PATH", m_path); }

QString FakeCommand::folder() const { return m_folder.path(); }
