#include "audio/player.h"

#include "audio/tool.h"

#include <QFileInfo>

namespace {

const QVector<Tool> &tools()
{
    static const QVector<Tool> all{
        {QStringLiteral("paplay"), QStringLiteral("pulseaudio-utils"), {}},
        {QStringLiteral("aplay"), QStringLiteral("alsa-utils"), {QStringLiteral("-q")}},
        {QStringLiteral("play"), QStringLiteral("sox"), {QStringLiteral("-q")}},
    };
    return all;
}

constexpr int patience = 1000; // ms

} // namespace

Player::Player(QObject *parent)
    : QObject(parent)
{
    const auto fail = [this] {
        Q_EMIT ended(QStringLiteral("%1 could not play the audio").arg(m_process.program()));
    };
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            [this, fail](int status, QProcess::ExitStatus way) {
                if (way == QProcess::NormalExit && status == 0)
                    Q_EMIT ended({});
                else
                    fail();
            });
    connect(&m_process, &QProcess::errorOccurred, this, [fail](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            fail();
    });
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
}

Player::~Player()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(patience);
}

QString Player::problem()
{
    return Tool::find(tools()) ? QString()
                               : QStringLiteral("nothing here plays sound; install one of %1")
                                     .arg(Tool::names(tools()));
}

// The name of a file may begin with a dash; its whole path does not.
void Player::play(const QString &path)
{
    const Tool tool = Tool::find(tools()).value_or(tools().first());
    m_process.start(tool.name, tool.arguments + QStringList{QFileInfo(path).absoluteFilePath()});
}
