#pragma once

class QString;

/// Recordings that the service does not take as they are.
namespace SoundFile {

/// Whether the file @p path is a recording of a kind that has to be converted: anything but WAV
/// with 16-bit samples, up to two channels and a usual rate. False for what is no recording, and
/// always where the program is built without the libraries for this.
bool needsConversion(const QString &path);

/// Writes the recording @p from as a WAV file @p to: 16 bits, one channel, 16 kHz. Returns why that
/// failed; empty: it is done.
QString convert(const QString &from, const QString &to);

} // namespace SoundFile
