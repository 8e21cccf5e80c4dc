#pragma once

class QString;
class QStringList;

namespace Suggestion {

/// "; did you mean say?" when @p word looks like a slip of one of @p names, which are written with
/// @p before in front of them. Empty when it does not.
QString of(const QString &word, const QStringList &names, const QString &before);

} // namespace Suggestion
