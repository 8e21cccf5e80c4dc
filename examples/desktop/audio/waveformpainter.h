#pragma once

#include <QPalette>
#include <QRect>

class QPainter;
class Summary;

/// Draws a recording and what is marked in it.
class WaveformPainter
{
public:
    /// What is marked; places from 0, the beginning, to 1, the end.
    struct Marks
    {
        double playHead = 0;
        double selectionStart = 0;
        double selectionEnd = 0; ///< Not behind the start: nothing is selected.

        bool hasSelection() const { return selectionEnd > selectionStart; }
    };

    /// The colours are the palette's: Base behind all, Highlight for what has been played and, half
    /// transparent, for the selection, Text for the play head, PlaceholderText for what is to come.
    WaveformPainter(const QRect &area, const QPalette &palette);

    void paint(QPainter *painter, const Summary &summary, const Marks &marks) const;

    /// The place at the horizontal coordinate @p x, and back.
    double placeAt(int x) const;
    int xOf(double place) const;

private:
    int yOf(int sample) const;

    QRect m_area;
    QPalette m_palette;
};
