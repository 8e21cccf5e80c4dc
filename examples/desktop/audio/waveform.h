#pragma once

#include "audio/summary.h"

#include <QAbstractSlider>

class WaveformPainter;

/// Shows a recording. The value is the play head in milliseconds: clicks and the keys of sliders
/// move it, with actionTriggered(). Dragging selects a stretch; so do the brackets [ and ], which
/// put its beginning and its end to the play head. Escape gives the selection up.
class Waveform : public QAbstractSlider
{
    Q_OBJECT
    Q_DISABLE_COPY(Waveform)

public:
    explicit Waveform(QWidget *parent = nullptr);

    /// Shows @p summary of @p duration milliseconds, with the play head at the beginning.
    void display(const Summary &summary, qint64 duration);

    /// Whether there is something to be seen.
    bool hasRecording() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The stretch is selected, in milliseconds; empty: nothing is.
    void selected(int from, int to);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int timeAt(int x) const;
    void select(int from, int to);
    WaveformPainter painter() const;

    Summary m_summary;
    int m_pressedAt = 0; ///< Horizontal coordinate.
    int m_from = 0;      ///< Milliseconds, like the next one.
    int m_to = 0;
};
