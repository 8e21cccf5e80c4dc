#include "tests/network/temporaryfolder.h"

#include <QDir>
#include <QFile>

namespace {

// Which Qt, or the system for it, looks up each time.
#ifdef Q_OS_WIN
const char variable[] = "TMP";
#else
const char variable[] = "TMPDIR";
#endif

} // namespace

TemporaryFolder::TemporaryFolder()
    : m_previous(qgetenv(variable))
{
    qputenv(variable, QFile::encodeName(m_folder.path()));
    if (QDir::tempPath() != m_folder.path())
        qFatal("the temporary folder cannot be set");
}

TemporaryFolder::~TemporaryFolder()
{
    if (m_previous.isNull())
        qunsetenv(variable);
    else
        qputenv(variable, m_previous);
}

QString TemporaryFolder::filePath(const QString &name) const { return m_folder.filePath(name); }
