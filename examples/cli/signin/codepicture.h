#pragma once

class QImage;
class QString;

namespace CodePicture {

/// The picture in the PNG file @p path, whose contents come from a server. Null when there is none,
/// and when it is far larger than a code to scan; that is checked before the picture is decoded.
QImage read(const QString &path);

} // namespace CodePicture
