#pragma once

class QString;

namespace TextInput {

/// Reads @p text, in UTF-8, from the file @p path, or from standard input up to its end when it is
/// "-". Returns why that is impossible; empty: it is done.
QString read(const QString &path, QString &text);

} // namespace TextInput
