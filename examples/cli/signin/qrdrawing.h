#pragma once

class QString;
class QrCode;

namespace QrDrawing {

/// @p code in block characters, each of which is two modules high, with the light margin that
/// scanners need. With @p coloured it is black on white whatever the colours of the terminal are;
/// without, its dark modules have the colour of text.
QString draw(const QrCode &code, bool coloured);

/// The columns that draw() takes.
int columns(const QrCode &code);

} // namespace QrDrawing
