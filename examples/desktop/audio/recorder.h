#pragma once

#include <QFile>
#include <QIODevice>
#include <QString>

#include <memory>

class QAudioInput;

/// Records from the microphone into WAV files of one channel with 16000 samples a second. A file is
/// whole at any moment, however the recording ends.
class Recorder : public QIODevice
{
    Q_OBJECT
    Q_DISABLE_COPY(Recorder)

public:
    explicit Recorder(QObject *parent = nullptr);
    ~Recorder() override;

    /// Whether there is a microphone that can be used.
    static bool isPossible();

    /// Records into a new file in @p folder, which is made if it is missing. The file is named
    /// after the time, in no language, and never replaces another. Returns why that is impossible;
    /// empty: it goes on.
    QString start(const QString &folder);

    /// Ends the recording, if one goes on. Its file stays.
    void stop();

    bool isRecording() const;

    /// The file that was recorded last, or is being recorded.
    QString path() const;

Q_SIGNALS:
    /// The loudest sample of the last moment, from 0 to 100.
    void level(int percent);

    /// The recording has ended by itself, for the reason @p why. What came before is in the file.
    void failed(const QString &why);

protected:
    qint64 readData(char *data, qint64 most) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    QString openNewFile(const QString &folder);
    bool writeHead();
    void giveUp(const QString &why);

    std::unique_ptr<QAudioInput> m_input; ///< While it records.
    QFile m_file;
    QString m_problem;
};
