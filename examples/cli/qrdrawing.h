#pragma once

class QString;
class QrCode;

namespace QrDrawing {

/// @p code in block characters, two modules one above the other in each, with the light margin that
/// scanners need. With @p coloured it is black on white whatever the terminal's colours are;
/// without, its dark modules are in the colour of text.
QString draw(const QrCode &code, bool coloured);

} // namespace QrDrawing
