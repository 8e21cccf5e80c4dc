#include "signin/qrcode.h"

#include <QImage>
#include <QRect>

namespace {

constexpr int finderWidth = 7; // modules; a finder pattern is in three of the corners
constexpr int smallest = 21;   // modules a side
constexpr int largest = 177;
constexpr int step = 4;

bool isDark(const QImage &picture, const QPoint &point)
{
    const QRgb pixel = picture.pixel(point);
    return qAlpha(pixel) > 127 && qGray(pixel) < 128;
}

// The picture without its quiet zone. The finder patterns reach every edge of what is left.
QRect darkArea(const QImage &picture)
{
    QRect area;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (isDark(picture, {x, y}))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

// The width of a module in pixels. The first run of dark pixels is the upper edge of a finder
// pattern, whose width in modules is known.
int moduleWidth(const QImage &picture, const QRect &area)
{
    int run = 0;
    while (run < area.width() && isDark(picture, area.topLeft() + QPoint(run, 0)))
        ++run;
    return run % finderWidth == 0 ? run / finderWidth : 0;
}

bool isPossible(int size) { return size >= smallest && size <= largest && size % step == 1; }

} // namespace

std::optional<QrCode> QrCode::read(const QImage &picture)
{
    const QRect area = darkArea(picture);
    const int width = moduleWidth(picture, area);
    if (width == 0 || area.width() != area.height() || area.width() % width != 0
        || !isPossible(area.width() / width))
        return {};
    QrCode code(area.width() / width);
    for (int row = 0; row < code.m_size; ++row) {
        for (int column = 0; column < code.m_size; ++column) {
            const QPoint middle(column * width + width / 2, row * width + width / 2);
            code.m_dark.setBit(row * code.m_size + column,
                               ::isDark(picture, area.topLeft() + middle));
        }
    }
    return code;
}

QrCode::QrCode(int size)
    : m_size(size)
    , m_dark(size * size)
{
}

int QrCode::size() const { return m_size; }

bool QrCode::isDark(int column, int row) const
{
    return column >= 0 && column < m_size && row >= 0 && row < m_size
           && m_dark.testBit(row * m_size + column);
}
