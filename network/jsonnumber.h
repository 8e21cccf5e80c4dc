#pragma once

#include <QtGlobal>

class QJsonValue;

namespace JsonNumber {

/// @p value without its fraction; 0 when it is no number, the nearest limit when it lies outside of
/// 64 bits. Qt reads numbers as doubles, so beyond 2^53 not every number is exact.
qint64 toInt64(const QJsonValue &value);

} // namespace JsonNumber
