#pragma once

#include <QBuffer>
#include <QImage>

#include <string>

namespace localservice {

/// The bytes of @p image as a PNG file.
inline std::string encodePng(const QImage &image)
{
    QBuffer file;
    image.save(&file, "PNG"); // opens the buffer, and memory is all that it needs
    return file.data().toStdString();
}

} // namespace localservice
