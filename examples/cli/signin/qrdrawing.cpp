#include "signin/qrdrawing.h"

#include "signin/qrcode.h"

#include <QString>

namespace {

constexpr int margin = 4; // modules

// Two of the 256 colours. The first sixteen of those are for users to choose; these two are not.
const QLatin1String blackOnWhite("\x1b[38;5;16;48;5;231m");
const QLatin1String asBefore("\x1b[0m");

QChar block(bool upper, bool lower)
{
    if (upper)
        return lower ? QChar(0x2588) : QChar(0x2580); // full and upper half
    return lower ? QChar(0x2584) : QLatin1Char(' ');  // lower half
}

} // namespace

QString QrDrawing::draw(const QrCode &code, bool coloured)
{
    QString drawing;
    for (int row = -margin; row < code.size() + margin; row += 2) {
        QString line;
        for (int column = -margin; column < code.size() + margin; ++column)
            line += block(code.isDark(column, row), code.isDark(column, row + 1));
        drawing += coloured ? blackOnWhite + line + asBefore : line;
        drawing += QLatin1Char('\n');
    }
    return drawing;
}

int QrDrawing::columns(const QrCode &code) { return code.size() + 2 * margin; }
