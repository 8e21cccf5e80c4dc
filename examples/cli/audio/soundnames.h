#pragma once

class QString;
struct Speech;

namespace SoundNames {

/// The ending of @p path when it is that of another format than @p format; empty: it is not.
QString otherFormat(const QString &path, const QString &format);

/// "morning.wav, 2.0 s, 16 kHz", of the audio file @p path that @p speech has become.
QString summary(const QString &path, const Speech &speech);

} // namespace SoundNames
