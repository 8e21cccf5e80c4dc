#pragma once

class QString;

namespace WavFile {

/// Whether the RIFF file @p path is shorter than it says itself, or than a head that could say so.
/// A file of another kind, and one that leaves its length open, never is; an empty one is.
bool isCutShort(const QString &path);

} // namespace WavFile
