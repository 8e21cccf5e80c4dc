#pragma once

class QString;
struct Session;

/// The file that keeps the session from one run to the next, readable by the user only.
namespace SessionFile {

/// Its path: vospeak/session.json in the folder of the user's settings, for every host.
QString path();

/// Makes the folder, and returns why a session cannot be kept, as far as that shows without the
/// file; empty: it can.
QString problem();

/// The session; not valid when the file holds none.
Session load();

/// Replaces the file, whole or not at all. Returns why that failed; empty: it is done.
QString save(const Session &session);

/// Whether there is such a file.
bool exists();

/// False when the file could not be removed.
bool remove();

} // namespace SessionFile
