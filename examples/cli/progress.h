#pragma once

#include <QString>

/// One line on the terminal that is rewritten as work goes on, and gone in the end. Nothing is
/// shown to anything but a terminal.
class Progress
{
    Q_DISABLE_COPY(Progress)

public:
    /// With @p enabled false nothing is shown there either.
    explicit Progress(bool enabled);
    ~Progress();

    void show(const QString &text);
    void clear();

private:
    bool m_enabled;
    int m_width = 0; ///< Of what is on the line.
};
