#pragma once

#include <QFileDevice>
#include <QString>

#include <optional>

class QByteArray;

namespace WholeFile {

/// Makes @p bytes the contents of the file @p path, whole or not at all; links are followed. The
/// file keeps its permissions unless @p permissions are given. Returns why that failed; empty: it
/// is done.
QString write(const QString &path, const QByteArray &bytes,
              std::optional<QFileDevice::Permissions> permissions = {});

} // namespace WholeFile
