#pragma once

class QString;

namespace WavFile {

/// Whether the RIFF file @p path is shorter than it says itself. A file of another kind, and one
/// that leaves its length open, never is.
bool isCutShort(const QString &path);

} // namespace WavFile
