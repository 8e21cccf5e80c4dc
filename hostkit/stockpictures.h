#pragma once

#include <QStringList>

/// The pictures of voices that hosts bring. DubInfo::avatar has the name of one of them.
namespace StockPictures {

/// The six names.
QStringList names();

/// The path of the PNG picture @p name in the resources of the program; that of the first one for a
/// name that is none of the six.
QString path(const QString &name);

} // namespace StockPictures
