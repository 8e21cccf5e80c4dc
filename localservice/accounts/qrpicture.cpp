#include "localservice/accounts/qrpicture.h"

#include "localservice/catalogue/picture.h"

#include <qrencode.h>

#include <memory>
#include <stdexcept>

namespace localservice {

namespace {

constexpr int moduleSize = 8; // points
constexpr int margin = 4;     // modules, as the standard wants it
constexpr std::uint8_t black = 0;
constexpr std::uint8_t white = 255;

struct FreeCode
{
    void operator()(QRcode *code) const { QRcode_free(code); }
};
using QrCode = std::unique_ptr<QRcode, FreeCode>;

bool isDark(const QRcode &code, int column, int row)
{
    if (column < 0 || row < 0 || column >= code.width || row >= code.width)
        return false;
    return (code.data[row * code.width + column] & 1U) != 0;
}

} // namespace

std::string qrPicture(const std::string &text)
{
    const QrCode code(QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M));
    if (!code)
        throw std::runtime_error("a QR code cannot be made");
    const int size = (code->width + 2 * margin) * moduleSize;
    Picture picture{size, size, {}};
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const bool dark = isDark(*code, x / moduleSize - margin, y / moduleSize - margin);
            const std::uint8_t shade = dark ? black : white;
            picture.points.insert(picture.points.end(), {shade, shade, shade, white});
        }
    }
    return encodePng(picture);
}

} // namespace localservice
