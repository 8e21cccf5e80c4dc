#pragma once

#include <QWidget>

class QSlider;

/// A slider whose value stands beside it.
class Level : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(Level)

public:
    /// @p name is for those who cannot see it.
    Level(const QString &name, int lowest, int highest, int value, QWidget *parent = nullptr);

    int value() const;
    void setValue(int value);

Q_SIGNALS:
    void changed(int value);

private:
    QSlider *m_slider;
};
