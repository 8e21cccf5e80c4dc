#include "localservice/accounts/qrpicture.h"

#include "localservice/base/png.h"

#include <qrencode.h>

#include <memory>
#include <stdexcept>

namespace localservice {

namespace {

constexpr int moduleSize = 8; // points
constexpr int margin = 4;     // modules, as the standard wants it

} // namespace

std::string qrPicture(const std::string &text)
{
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M), QRcode_free);
    if (!code)
        throw std::runtime_error("a QR code cannot be made");
    const int width = code->width;
    QImage modules(width + 2 * margin, width + 2 * margin, QImage::Format_RGB32);
    modules.fill(Qt::white);
    for (int i = 0; i < width * width; ++i)
        if ((code->data[i] & 1U) != 0)
            modules.setPixelColor(margin + i % width, margin + i / width, Qt::black);
    return encodePng(modules.scaled(modules.size() * moduleSize));
}

} // namespace localservice
