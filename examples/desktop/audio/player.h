#pragma once

#include "audio/playbacksource.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>

class QAudioOutput;

/// Plays WAV files with PCM samples. Where no audio device takes them it plays in time, unheard.
/// Times are in milliseconds.
class Player : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Player)

public:
    explicit Player(QObject *parent = nullptr);
    ~Player() override;

    /// Has the file @p path in place of what was played; empty: nothing. False when there is
    /// nothing that can be played.
    bool load(const QString &path);

    qint64 duration() const;
    qint64 position() const;
    bool isPlaying() const;

    /// Whether nothing is heard.
    bool isSilent() const;

    /// Plays on; from the beginning where it has ended.
    void play();
    void pause();
    void seek(qint64 time);

    /// Plays from @p from to @p to again and again; not where to <= from.
    void setLoop(qint64 from, qint64 to);

Q_SIGNALS:
    void moved(qint64 position);
    void playingChanged(bool isPlaying);

    /// The audio device is gone: it plays on, unheard.
    void silenced();

private:
    void startOutput();
    void stopOutput();
    void goOnSilently();
    void onTick();
    qint64 bytesOf(qint64 time) const;
    qint64 timeOf(qint64 bytes) const;

    PlaybackSource m_source;
    std::unique_ptr<QAudioOutput> m_output; ///< While it plays and is heard.
    QTimer m_tick;                          ///< Runs while it plays.
    QElapsedTimer m_sinceTick;
    bool m_isSilent = false;
};
