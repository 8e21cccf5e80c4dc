#include "signin/codepicture.h"

#include <QBuffer>
#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QSize>
#include <QString>
#include <QtEndian>

namespace {

constexpr qint64 longestFile = 1048576; // bytes; the picture of a code has a few thousand
constexpr int largestSide = 2048;       // pixels; a code has 185 modules at most, margin included

constexpr char signature[] = "\x89PNG\r\n\x1a\n";
constexpr int signatureSize = sizeof(signature) - 1;
constexpr int frameSize = 12; // bytes of a chunk's length, type and sum
constexpr int typeSize = 4;   // bytes

// The chunks that make pixels are those in capitals and the transparency. The decoder unpacks all
// others, to as much as a thousand times their length, as soon as it is asked for the size.
bool makesPixels(const QByteArray &type) { return type == type.toUpper() || type == "tRNS"; }

// The chunks of @p png that make pixels. Empty unless the picture is there from its beginning to
// its end: the decoder would write its complaints to standard error.
QByteArray pixelsOnly(const QByteArray &png)
{
    if (!png.startsWith(signature))
        return {};
    QByteArray kept = png.left(signatureSize);
    int place = signatureSize;
    while (png.size() - place >= frameSize) {
        const auto length = qFromBigEndian<quint32>(png.constData() + place);
        if (length > quint32(png.size() - place - frameSize))
            break;
        const int size = int(length) + frameSize;
        const QByteArray type = png.mid(place + typeSize, typeSize);
        if (makesPixels(type))
            kept += png.mid(place, size);
        if (type == "IEND")
            return kept;
        place += size;
    }
    return {};
}

} // namespace

QImage CodePicture::read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > longestFile)
        return {};
    QByteArray bytes = pixelsOnly(file.readAll());
    if (bytes.isEmpty())
        return {};
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer, "PNG");
    const QSize size = reader.size();
    return size.width() > largestSide || size.height() > largestSide ? QImage() : reader.read();
}
