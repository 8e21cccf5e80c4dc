#pragma once

#include "hostkit/speakjob.h"

#include <QPointer>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>

class Desk;
class Level;
class Notice;
class Player;
class PlayerPanel;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

/// Speaks a text, with music under it, and shows, plays and saves what came of it.
class SpeakPage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(SpeakPage)

public:
    explicit SpeakPage(Desk *desk, QWidget *parent = nullptr);

    /// Speaks with the voice @p param from now on.
    void chooseVoice(const QString &param);

    /// Saves what was spoken last into the file @p path; a failure is told on the page.
    void save(const QString &path);

    /// Keeps the text and the choices for the next start. Returns why the text is not kept; empty:
    /// it is. The page tells it as well.
    QString keepState();

private:
    QWidget *makeChoices();
    QWidget *makeText();
    void onLoaded();
    void restoreState();
    void showVoice();
    void showCount();
    void playSample();
    Speech speech() const;
    void speak();
    void onProgress(Job::Stage stage, qint64 done, qint64 total);
    void onSpoken(const QString &path);
    void onFailed(const QString &why);
    void mix();
    void showAudio(const QString &path);
    void saveAs();
    QString newPath();

    Desk *m_desk;
    QPlainTextEdit *m_text;
    QLabel *m_count;
    QComboBox *m_voice;
    QLabel *m_about;
    QPushButton *m_sample;
    QComboBox *m_rate;
    Level *m_speed;
    Level *m_pitch;
    Level *m_volume;
    QComboBox *m_music;
    Level *m_musicLevel;
    QPushButton *m_speak;
    QPushButton *m_save;
    QProgressBar *m_progress;
    Notice *m_notice;
    PlayerPanel *m_panel;
    Player *m_samplePlayer;
    QTimer m_mixSoon; ///< Runs while the user moves the level of the music.

    QPointer<SpeakJob> m_job; ///< While it speaks.
    QTemporaryDir m_folder;
    int m_files = 0;      ///< That were made in the folder.
    QString m_spoken;     ///< The file with the voice alone; empty: nothing was spoken.
    QString m_audio;      ///< The file that is shown and saved.
    QString m_keptText;   ///< The text as it will be there at the next start.
    QString m_voiceParam; ///< The voice, also while the voices are not known.
};
