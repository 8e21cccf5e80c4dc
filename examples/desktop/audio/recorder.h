#pragma once

#include <QFile>
#include <QIODevice>
#include <QString>

#include <memory>

class QAudioInput;

/// Records from the microphone into a WAV file of one channel with 16000 samples a second.
class Recorder : public QIODevice
{
    Q_OBJECT
    Q_DISABLE_COPY(Recorder)

public:
    explicit Recorder(QObject *parent = nullptr);
    ~Recorder() override;

    /// Whether there is a microphone that can be used.
    static bool isPossible();

    /// Records into the file @p path. Returns why that is impossible; empty: it goes on.
    QString start(const QString &path);

    /// Ends the recording. Returns why it is not whole; empty: the file is complete.
    QString stop();

    bool isRecording() const;

Q_SIGNALS:
    /// The loudest sample of the last moment, from 0 to 100.
    void level(int percent);

protected:
    qint64 readData(char *data, qint64 most) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool writeHead(quint32 dataSize);

    std::unique_ptr<QAudioInput> m_input; ///< While it records.
    QFile m_file;
    QString m_problem;
};
