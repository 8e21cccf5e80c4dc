#pragma once

class QString;

namespace WavFile {

/// Whether the RIFF file @p path is shorter than its head says, or too short to have a head. False
/// for a file of another kind and for one whose length is open; true for an empty file.
bool isCutShort(const QString &path);

} // namespace WavFile
