#pragma once

#include "gallery/voicefilter.h"

#include <QWidget>

class Desk;
class Notice;
class Player;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;

/// The voices with their pictures, and the music, to be listened to and chosen.
class GalleryPage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(GalleryPage)

public:
    explicit GalleryPage(Desk *desk, QWidget *parent = nullptr);

Q_SIGNALS:
    /// The user wants to speak with the voice @p param.
    void chosen(const QString &param);

private:
    QWidget *makeVoices();
    QWidget *makeMusic();
    void onLoaded();
    void showCounts();
    void listen(const QString &address);

    Desk *m_desk;
    VoiceFilter m_filter;
    Player *m_player;
    QLineEdit *m_search;
    QComboBox *m_category;
    QListView *m_voices;
    QListView *m_music;
    QLabel *m_about; ///< The chosen voice.
    QLabel *m_count;
    Notice *m_notice;
    QPushButton *m_sample;
    QPushButton *m_use;
    QPushButton *m_play;
    QPushButton *m_stop;
};
