#include "localservice/catalogue/picture.h"

#include <png.h>

#include <stdexcept>

namespace localservice {

std::string encodePng(const Picture &picture)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0; // the first call only finds it
    if (png_image_write_to_memory(&image, nullptr, &size, 0, picture.points.data(), 0, nullptr)
        == 0)
        throw std::runtime_error("a picture cannot be encoded");
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.points.data(), 0, nullptr)
        == 0)
        throw std::runtime_error("a picture cannot be encoded");
    bytes.resize(size);
    return bytes;
}

} // namespace localservice
