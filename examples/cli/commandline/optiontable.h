#pragma once

#include <QLatin1String>
#include <QVector>

class QString;
struct Options;

/// What the command line, the help, the man page and the completions know of an option.
struct OptionRow
{
    const char *name = nullptr;     ///< Without dashes.
    const char *letter = nullptr;   ///< Null: the name is the only way to write it.
    const char *value = nullptr;    ///< What stands for the value; null: it takes none.
    const char *meaning = nullptr;  ///< One line.
    const char *standard = nullptr; ///< The value when none is given; null: there is none.

    /// Takes @p value over. Returns why that is impossible; empty: it is done.
    QString (*read)(Options &options, const QString &value) = nullptr;

    const char *command = nullptr; ///< The only command in which it means this; null: in all.
};

namespace OptionTable {

/// Every row. Those of one name are either all with a value or all without.
const QVector<OptionRow> &rows();

/// The options that go with every command.
const QVector<const OptionRow *> &common();

/// The row of @p name in the command @p command; null: there is none.
const OptionRow *find(QLatin1String name, QLatin1String command);

/// The values that can be meant, when OptionRow::value names them: "wav|pcm". Empty: any.
QVector<QLatin1String> choices(const OptionRow &row);

/// Whether the value is the name of a file.
bool takesFile(const OptionRow &row);

} // namespace OptionTable
