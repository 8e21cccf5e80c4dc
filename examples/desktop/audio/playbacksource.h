#pragma once

#include "hostkit/wavfile.h"

#include <QFile>
#include <QIODevice>

/// The samples of a WAV file as they are to be played, from any place on and again and again.
class PlaybackSource : public QIODevice
{
    Q_OBJECT
    Q_DISABLE_COPY(PlaybackSource)

public:
    explicit PlaybackSource(QObject *parent = nullptr);

    /// Opens the file @p path. False for what is no WAV file with PCM samples.
    bool load(const QString &path);
    void unload();

    const WavFile::Format &format() const;
    int frameSize() const; ///< Bytes.

    /// The next byte, which is the first of a frame.
    qint64 place() const;
    void setPlace(qint64 place);

    /// Goes from @p end back to @p start, in bytes; not where end <= start.
    void setLoop(qint64 start, qint64 end);

    /// Never, while it goes round in a loop.
    bool hasEnded() const;

    bool isSequential() const override;
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *data, qint64 most) override;
    qint64 writeData(const char *data, qint64 most) override;

private:
    bool loops() const;
    qint64 whole(qint64 bytes) const;

    QFile m_file;
    WavFile::Format m_format;
    qint64 m_place = 0;
    qint64 m_loopStart = 0;
    qint64 m_loopEnd = 0;
};
