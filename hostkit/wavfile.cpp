#include "hostkit/wavfile.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

namespace {

constexpr int headSize = 8;                // "RIFF" and the number of bytes that follow
constexpr quint32 openLength = 0xffffffff; // whoever streams a file does not know its length

} // namespace

bool WavFile::isCutShort(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray head = file.read(headSize);
    if (!QByteArray("RIFF").startsWith(head.left(4)))
        return false;
    if (head.size() < headSize)
        return true;
    const auto announced = qFromLittleEndian<quint32>(head.constData() + 4);
    return announced != openLength && file.size() < headSize + qint64(announced);
}
