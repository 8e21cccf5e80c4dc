#pragma once

#include <QString>

/// One line on the terminal that is rewritten as work goes on, and gone in the end. Where standard
/// error is no terminal, nothing is written.
class Progress
{
    Q_DISABLE_COPY(Progress)

public:
    /// With @p enabled false nothing is written to a terminal either.
    explicit Progress(bool enabled);
    ~Progress();

    void show(const QString &text);
    void clear();

    /// Writes @p line to stay, where the others are written.
    void tell(const QString &line);

private:
    bool m_enabled;
    int m_width = 0; ///< Characters on the line.
};
