#pragma once

class QString;
struct Session;

/// The file that keeps the session from one run to the next, for the user only.
namespace SessionFile {

/// Why a session could not be kept, as far as can be told beforehand; empty: it could. Makes the
/// folder.
QString problem();

/// The session; not valid when the file holds none.
Session load();

/// Replaces the file, whole or not at all. Why that failed; empty: it is done.
QString save(const Session &session);

bool exists();

/// False when there is a file still.
bool remove();

} // namespace SessionFile
