#include "localservice/base/png.h"

#include <QBuffer>

#include <stdexcept>

namespace localservice {

std::string encodePng(const QImage &image)
{
    QBuffer file;
    if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG"))
        throw std::runtime_error("a picture cannot be encoded");
    return file.data().toStdString();
}

} // namespace localservice
