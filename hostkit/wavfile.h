#pragma once

#include <QtGlobal>

#include <optional>

class QString;

namespace WavFile {

/// What a WAV file says of itself, and where its samples are.
struct Format
{
    int coding = 0;        ///< 1: samples are whole numbers (PCM); 3: floating point.
    int channels = 0;      ///< At least 1.
    int sampleRate = 0;    ///< Samples per second and channel.
    int bitsPerSample = 0; ///< At least 8.
    qint64 dataStart = 0;  ///< Bytes before the first sample.
    qint64 dataSize = 0;   ///< Bytes of the samples, as far as they are there.

    /// Seconds.
    double duration() const;
};

/// The format of the file @p path; no value for a file of another kind, and for one whose head is
/// broken.
std::optional<Format> format(const QString &path);

/// Seconds that the file @p path takes; negative where that does not show.
double duration(const QString &path);

/// Whether the RIFF file @p path is shorter than its head says, or too short to have a head. False
/// for a file of another kind and for one whose length is open; true for an empty file.
bool isCutShort(const QString &path);

} // namespace WavFile
