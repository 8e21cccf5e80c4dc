#pragma once

#include "audio/player.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QPushButton;
class Waveform;

/// Shows a recording and plays it.
class PlayerPanel : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(PlayerPanel)

public:
    explicit PlayerPanel(QWidget *parent = nullptr);

    /// Shows the file @p path; empty: nothing.
    void load(const QString &path);

    Player *player();

private:
    void showTime(qint64 position);
    void setLoop();
    void explain();

    Player m_player;
    Waveform *m_waveform;
    QPushButton *m_play;
    QCheckBox *m_loop;
    QLabel *m_time;
    QLabel *m_hint;
    QString m_path;
    int m_from = 0; ///< The selection, in milliseconds, like the next one.
    int m_to = 0;
};
