#include "network/jsonnumber.h"

#include <QJsonValue>

#include <limits>

qint64 JsonNumber::toInt64(const QJsonValue &value)
{
    // 2^63, the least double above all 64-bit numbers. Its negative is the smallest of them.
    constexpr double limit = 9223372036854775808.0;
    const double number = value.toDouble();
    if (number >= limit)
        return std::numeric_limits<qint64>::max();
    if (number < -limit)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(number);
}
