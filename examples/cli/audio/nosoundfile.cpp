// In the place of soundfile.cpp where its libraries are missing.

#include "audio/soundfile.h"

#include <QString>

bool SoundFile::needsConversion(const QString &) { return false; }

QString SoundFile::convert(const QString &from, const QString &)
{
    return QStringLiteral("this build cannot convert \"%1\"").arg(from);
}
