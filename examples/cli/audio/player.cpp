#include "audio/player.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

const struct
{
    QLatin1String name;
    QLatin1String package; // of Debian
    bool canBeQuiet;       // by -q; the other writes nothing anyway
} programs[] = {
    {QLatin1String("paplay"), QLatin1String("pulseaudio-utils"), false},
    {QLatin1String("aplay"), QLatin1String("alsa-utils"), true},
    {QLatin1String("play"), QLatin1String("sox"), true},
};

} // namespace

Player::Player(QObject *parent)
    : QObject(parent)
{
    const auto tell = [this] {
        const bool isPlayed =
            m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
        Q_EMIT ended(isPlayed ? QString()
                              : QStringLiteral("%1 could not play the audio")
                                    .arg(QFileInfo(m_process.program()).fileName()));
    };
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, tell);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            Q_EMIT ended(QStringLiteral("no player could be started"));
    });
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.setStandardInputFile(QProcess::nullDevice());
}

Player::~Player()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(1000);
}

QString Player::find()
{
    for (const auto &program : programs) {
        if (QString path = QStandardPaths::findExecutable(program.name); !path.isEmpty())
            return path;
    }
    return {};
}

QString Player::problem()
{
    if (!find().isEmpty())
        return {};
    QStringList names;
    for (const auto &program : programs)
        names.append(QStringLiteral("%1 (%2)").arg(program.name, program.package));
    return QStringLiteral("nothing here plays sound; install one of %1")
        .arg(names.join(QLatin1String(", ")));
}

// The name of a file may begin with a dash; its whole path does not.
void Player::play(const QString &path)
{
    const QString program = find();
    QStringList arguments;
    for (const auto &known : programs) {
        if (known.canBeQuiet && QFileInfo(program).fileName() == known.name)
            arguments.append(QStringLiteral("-q"));
    }
    m_process.start(program, arguments << QFileInfo(path).absoluteFilePath());
}
