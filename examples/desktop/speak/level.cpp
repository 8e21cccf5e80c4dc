#include "speak/level.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>

Level::Level(const QString &name, int lowest, int highest, int value, QWidget *parent)
    : QWidget(parent)
    , m_slider(new QSlider(Qt::Horizontal))
{
    m_slider->setRange(lowest, highest);
    m_slider->setPageStep((highest - lowest) / 10);
    m_slider->setAccessibleName(name);
    auto *number = new QLabel;
    number->setMinimumWidth(number->fontMetrics().horizontalAdvance(QStringLiteral("-000")));
    number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_slider, 1);
    layout->addWidget(number);
    setFocusProxy(m_slider);
    const auto show = [=](int value) {
        number->setNum(value);
        number->setAccessibleName(tr("%1: %2").arg(name).arg(value));
    };
    connect(m_slider, &QSlider::valueChanged, this, show);
    connect(m_slider, &QSlider::valueChanged, this, &Level::changed);
    m_slider->setValue(value);
    show(value);
}

int Level::value() const { return m_slider->value(); }

void Level::setValue(int value) { m_slider->setValue(value); }
