#include "audio/playerpanel.h"

#include "audio/summary.h"
#include "audio/waveform.h"
#include "common/inbackground.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QString clock(qint64 time)
{
    const qint64 seconds = time / 1000;
    return QStringLiteral("%1:%2.%3")
        .arg(seconds / 60)
        .arg(seconds % 60, 2, 10, QLatin1Char('0'))
        .arg(time % 1000 / 100);
}

} // namespace

PlayerPanel::PlayerPanel(QWidget *parent)
    : QWidget(parent)
    , m_waveform(new Waveform)
    , m_play(new QPushButton(tr("&Play")))
    , m_loop(new QCheckBox(tr("L&oop the selection")))
    , m_time(new QLabel)
    , m_hint(new QLabel)
{
    m_play->setObjectName(QStringLiteral("play"));
    m_loop->setToolTip(tr("Drag over the waveform to select, or use the keys [ and ]"));
    m_hint->setWordWrap(true);
    auto *row = new QHBoxLayout;
    row->addWidget(m_play);
    row->addWidget(m_loop);
    row->addWidget(m_hint, 1);
    row->addWidget(m_time);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_waveform, 1);
    layout->addLayout(row);

    connect(m_play, &QPushButton::clicked, this,
            [this] { m_player.isPlaying() ? m_player.pause() : m_player.play(); });
    connect(&m_player, &Player::playingChanged, this,
            [this](bool isPlaying) { m_play->setText(isPlaying ? tr("&Pause") : tr("&Play")); });
    connect(&m_player, &Player::moved, this, &PlayerPanel::showTime);
    connect(&m_player, &Player::silenced, this, &PlayerPanel::explain);
    connect(m_waveform, &QAbstractSlider::actionTriggered, this,
            [this] { m_player.seek(m_waveform->sliderPosition()); });
    connect(m_waveform, &Waveform::selected, this, [this](int from, int to) {
        m_from = from;
        m_to = to;
        setLoop();
    });
    connect(m_loop, &QCheckBox::toggled, this, &PlayerPanel::setLoop);
    load({});
}

void PlayerPanel::load(const QString &path)
{
    m_path = path;
    const bool isLoaded = m_player.load(path);
    m_waveform->display({}, m_player.duration());
    m_waveform->setEnabled(isLoaded);
    m_play->setEnabled(isLoaded);
    showTime(0);
    explain();
    if (!isLoaded)
        return;
    inBackground(
        this, [path] { return Summary::ofFile(path); },
        [this, path](const Summary &summary) {
            if (path == m_path)
                m_waveform->display(summary, m_player.duration());
        });
}

Player *PlayerPanel::player() { return &m_player; }

void PlayerPanel::showTime(qint64 position)
{
    m_waveform->setValue(int(position));
    m_time->setText(m_path.isEmpty()
                        ? QString()
                        : tr("%1 of %2").arg(clock(position), clock(m_player.duration())));
}

void PlayerPanel::setLoop()
{
    const bool hasSelection = m_to > m_from;
    m_loop->setEnabled(hasSelection);
    if (hasSelection && m_loop->isChecked())
        m_player.setLoop(m_from, m_to);
    else
        m_player.setLoop(0, 0);
}

void PlayerPanel::explain()
{
    if (m_path.isEmpty())
        m_hint->clear();
    else if (!m_play->isEnabled())
        m_hint->setText(tr("This recording cannot be shown or played"));
    else
        m_hint->setText(m_player.isSilent() ? tr("There is no audio device: nothing is heard")
                                            : QString());
}
