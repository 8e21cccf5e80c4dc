#include "audio/waveform.h"

#include "audio/waveformpainter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

#include <limits>

namespace {

constexpr int step = 1000;      // ms
constexpr int pageStep = 10000; // ms

} // namespace

Waveform::Waveform(QWidget *parent)
    : QAbstractSlider(parent)
{
    setObjectName(QStringLiteral("waveform"));
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::StrongFocus);
    setSingleStep(step);
    setPageStep(::pageStep);
    setRange(0, 0);
    setAccessibleName(tr("Waveform"));
    setAccessibleDescription(tr("Arrow keys move the play head; [ and ] select, Escape gives the "
                                "selection up"));
}

void Waveform::display(const Summary &summary, qint64 duration)
{
    m_summary = summary;
    setRange(0, int(qMin<qint64>(duration, std::numeric_limits<int>::max())));
    setValue(0);
    select(0, 0);
}

bool Waveform::hasRecording() const { return !m_summary.isEmpty(); }

QSize Waveform::sizeHint() const { return {400, 110}; }

QSize Waveform::minimumSizeHint() const { return {100, 60}; }

void Waveform::paintEvent(QPaintEvent *)
{
    QPainter canvas(this);
    const double all = qMax(1, maximum());
    painter().paint(&canvas, m_summary, {value() / all, m_from / all, m_to / all});
    if (!hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &canvas, this);
}

void Waveform::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_pressedAt = event->x();
}

void Waveform::mouseMoveEvent(QMouseEvent *event)
{
    const bool isDragged = qAbs(event->x() - m_pressedAt) >= QApplication::startDragDistance();
    if (event->buttons() & Qt::LeftButton && isDragged)
        select(timeAt(qMin(m_pressedAt, event->x())), timeAt(qMax(m_pressedAt, event->x())));
}

void Waveform::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton
        || qAbs(event->x() - m_pressedAt) >= QApplication::startDragDistance())
        return;
    setSliderPosition(timeAt(event->x())); // triggers the action
}

void Waveform::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_BracketLeft:
        return select(value(), qMax(m_to, value()));
    case Qt::Key_BracketRight:
        return select(qMin(m_from, value()), value());
    case Qt::Key_Escape:
        return select(0, 0);
    default:
        QAbstractSlider::keyPressEvent(event);
    }
}

int Waveform::timeAt(int x) const
{
    return qBound(0, int(painter().placeAt(x) * maximum()), maximum());
}

void Waveform::select(int from, int to)
{
    m_from = from;
    m_to = to;
    update();
    Q_EMIT selected(from, to);
}

WaveformPainter Waveform::painter() const { return {rect(), palette()}; }
