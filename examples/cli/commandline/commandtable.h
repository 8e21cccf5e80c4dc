#pragma once

#include <QLatin1String>
#include <QVector>

#include <memory>

class Command;
class QString;
struct OptionRow;
struct Options;
struct Tools;

/// What a command asks others for.
enum class Needs {
    Nothing,
    Server,
    Token,                ///< A server, with the token of a user.
    TokenUnlessAnonymous, ///< The same, unless the options say otherwise.
};

/// All that is known of a command in one place.
struct CommandRow
{
    const char *name = nullptr;
    const char *subject =
        nullptr;    ///< What follows it, as the help writes that; null: nothing does.
    int fewest = 0; ///< Subjects.
    int most = 0;
    const char *summary = nullptr; ///< What it does, as one sentence.
    const char *options = nullptr; ///< Names, besides the common options.
    Needs needs = Needs::Nothing;

    /// Checks what the options say together. Returns why they cannot be carried out; empty: they
    /// can. Null: there is nothing to check.
    QString (*read)(Options &options) = nullptr;

    /// Checks, and reads, what has to be there before a server is asked. Returns as read() does.
    QString (*prepare)(Options &options) = nullptr;

    /// Null: the command line itself answers.
    std::unique_ptr<Command> (*make)(const Options &options, const Tools &tools) = nullptr;

    const char *members = nullptr; ///< Of the object that --json prints; null: there is none.
    const char *details = nullptr; ///< Further help, in lines of 80 columns at most.
};

namespace CommandTable {

/// In the order of the help.
const QVector<CommandRow> &rows();

/// The command @p name; null: there is none.
const CommandRow *find(const QString &name);

/// The options of @p command, without the common ones.
QVector<const OptionRow *> options(const CommandRow &command);

/// Whether @p options ask for something that needs the token of a user.
bool needsToken(const Options &options);

} // namespace CommandTable
