#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

/// Records from the microphone through the first program found of those that desktops have for it.
/// It is ended when the object goes.
class Recorder : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Recorder)

public:
    explicit Recorder(QObject *parent);
    ~Recorder() override;

    /// Why nothing can be recorded; empty: it can.
    static QString problem();

    /// Records @p seconds into the WAV file @p path, once; answered by ended().
    void record(int seconds, const QString &path);

Q_SIGNALS:
    /// @p problem is empty when the file is there.
    void ended(const QString &problem);

private:
    void tell();

    QProcess m_process;
    QTimer m_end;
    QString m_path;
};
