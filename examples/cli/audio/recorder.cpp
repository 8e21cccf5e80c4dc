#include "audio/recorder.h"

#include "audio/tool.h"

#include <QFileInfo>

namespace {

// Both write 16-bit samples of one channel, and the head of the file when they are told to end.
const QVector<Tool> &tools()
{
    static const QVector<Tool> all{
        {QStringLiteral("arecord"),
         QStringLiteral("alsa-utils"),
         {QStringLiteral("-q"), QStringLiteral("-t"), QStringLiteral("wav"), QStringLiteral("-f"),
          QStringLiteral("S16_LE"), QStringLiteral("-r"), QStringLiteral("16000"),
          QStringLiteral("-c"), QStringLiteral("1")}},
        {QStringLiteral("parecord"),
         QStringLiteral("pulseaudio-utils"),
         {QStringLiteral("--file-format=wav"), QStringLiteral("--format=s16le"),
          QStringLiteral("--rate=16000"), QStringLiteral("--channels=1")}},
    };
    return all;
}

constexpr int patience = 1000; // ms

} // namespace

Recorder::Recorder(QObject *parent)
    : QObject(parent)
{
    m_end.setSingleShot(true);
    connect(&m_end, &QTimer::timeout, &m_process, &QProcess::terminate);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &Recorder::tell);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            tell();
    });
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
}

Recorder::~Recorder()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(patience);
}

QString Recorder::problem()
{
    return Tool::find(tools()) ? QString()
                               : QStringLiteral("nothing here records sound; install one of %1")
                                     .arg(Tool::names(tools()));
}

void Recorder::record(int seconds, const QString &path)
{
    const auto tool = Tool::find(tools());
    if (!tool)
        return tell();
    m_path = path;
    m_process.start(tool->name, tool->arguments + QStringList{path});
    m_end.start(seconds * 1000);
}

// The status is that of a program that was told to end; the file says whether it has recorded.
void Recorder::tell()
{
    const bool isThere = QFileInfo(m_path).size() > 0 && !m_end.isActive();
    Q_EMIT ended(isThere ? QString() : QStringLiteral("nothing could be recorded"));
}
