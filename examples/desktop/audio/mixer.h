#pragma once

class QString;

namespace Mixer {

/// Puts the music of the WAV file @p music, repeated as often as needed, under the voice of the
/// file @p voice, at @p level percent of its own amplitude, and writes the file @p output in the
/// format of the voice. Both have 16-bit PCM samples. Returns why that failed; empty: it is done.
QString mix(const QString &voice, const QString &music, int level, const QString &output);

} // namespace Mixer
