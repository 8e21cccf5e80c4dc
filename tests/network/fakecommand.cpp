#include "tests/network/fakecommand.h"

#include "tests/support/testfolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const char variable[] = "VONETWORK_FAKE_COMMAND"; // which the program looks up

} // namespace

FakeCommand::FakeCommand(const QString &name)
    : m_path(qgetenv("PATH"))
    , m_outerCommand(qgetenv(variable))
{
    const QFileInfo program(QStringLiteral(FAKE_COMMAND));
    const QString suffix =
        program.suffix().isEmpty() ? QString() : QLatin1Char('.') + program.suffix();
    const QString command = m_folder.filePath(name + suffix);
    if (!QFile::copy(program.filePath(), command))
        qFatal("cannot make %s", qPrintable(command));
    const QByteArray folder = QFile::encodeName(QDir::toNativeSeparators(m_folder.path()));
    qputenv(variable, folder);
    qputenv("PATH", folder + QDir::listSeparator().toLatin1() + m_path);
}

FakeCommand::FakeCommand(const QString &name, const QByteArray &output)
    : FakeCommand(name)
{
    TestFolder::write(m_folder.filePath(QStringLiteral("output")), output);
}

FakeCommand::~FakeCommand()
{
    qputenv("PATH", m_path);
    qputenv(variable, m_outerCommand);
}

bool FakeCommand::hasEnded() const
{
    return QFile::exists(m_folder.filePath(QStringLiteral("ended")));
}
