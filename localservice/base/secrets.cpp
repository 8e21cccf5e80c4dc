#include "localservice/base/secrets.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

#include <array>
#include <random>

namespace localservice {

namespace {

constexpr std::int64_t leastToken = 2;
constexpr std::int64_t largestToken = (std::int64_t{1} << 53) - 1;
constexpr int codes = 1000000; // of six digits

} // namespace

std::string randomId()
{
    std::array<quint32, 4> bits{};
    QRandomGenerator::system()->fillRange(bits.data(), bits.size());
    return QByteArray(reinterpret_cast<const char *>(bits.data()), sizeof bits)
        .toHex()
        .toStdString();
}

std::int64_t randomToken()
{
    return std::uniform_int_distribution(leastToken, largestToken)(*QRandomGenerator64::system());
}

std::string randomCode()
{
    return std::to_string(codes + QRandomGenerator::system()->bounded(codes)).substr(1);
}

std::string digestOf(const std::string &secret)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(secret), QCryptographicHash::Sha256)
        .toHex()
        .toStdString();
}

} // namespace localservice
