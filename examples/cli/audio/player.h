#pragma once

#include <QObject>
#include <QProcess>
#include <QString>

/// Plays a sound through the first program found of those that desktops have for it. It is ended
/// when the object goes.
class Player : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Player)

public:
    explicit Player(QObject *parent);
    ~Player() override;

    /// Why nothing can be played; empty: it can.
    static QString problem();

    /// Plays the file @p path, once; answered by ended().
    void play(const QString &path);

Q_SIGNALS:
    /// @p problem is empty when the whole file was played.
    void ended(const QString &problem);

private:
    QProcess m_process;
};
