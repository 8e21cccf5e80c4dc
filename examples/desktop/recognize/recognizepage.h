#pragma once

#include "audio/recorder.h"
#include "recognize/recognitionqueue.h"

#include <QWidget>

class Notice;
class PlayerPanel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTreeView;

/// Recognises files and what is recorded here. Recordings are kept in the user's folder of music.
class RecognizePage : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(RecognizePage)

public:
    explicit RecognizePage(Desk *desk, QWidget *parent = nullptr);

    /// Appends the files @p paths to the queue.
    void add(const QStringList &paths);

private:
    QLayout *makeSources();
    QLayout *makeRowButtons();
    QLayout *makeTextButtons();
    void chooseFiles();
    void record();
    void endRecording(const QString &problem);
    void showRecording();
    void showRow();
    void showButtons();
    void saveText();
    int row() const; ///< -1: none.

    RecognitionQueue m_queue;
    Recorder m_recorder;
    QTreeView *m_rows;
    QPushButton *m_record;
    QProgressBar *m_level;
    QPushButton *m_cancel;
    QPushButton *m_retry;
    QPushButton *m_remove;
    QPushButton *m_copy;
    QPushButton *m_save;
    PlayerPanel *m_panel;
    QPlainTextEdit *m_text;
    Notice *m_notice;
    QString m_shown; ///< The file in the panel.
};
