#include "documents/completions.h"

#include "commandline/commandtable.h"
#include "commandline/optiontable.h"

#include <QString>
#include <QStringList>

namespace {

QString nameOf(const CommandRow &row) { return QLatin1String(row.name); }

QString nameOf(const OptionRow &row) { return QLatin1String(row.name); }

QVector<const OptionRow *> optionsOf(const CommandRow &row)
{
    return CommandTable::options(row) + OptionTable::common();
}

bool takesFile(const CommandRow &row)
{
    return QString::fromLatin1(row.subject).contains(QLatin1String("FILE"));
}

QString choicesOf(const OptionRow &row)
{
    QStringList names;
    const auto choices = OptionTable::choices(row);
    for (const QLatin1String &choice : choices)
        names.append(choice);
    return names.join(QLatin1Char(' '));
}

QString commandNames()
{
    QStringList names;
    for (const CommandRow &row : CommandTable::rows())
        names.append(nameOf(row));
    return names.join(QLatin1Char(' '));
}

// What "help" tells of. Empty for the other commands.
QString pagesOf(const CommandRow &row)
{
    return row.make ? QString() : commandNames() + QLatin1String(" options");
}

// A text in apostrophes, which shells take literally.
QString quoted(QString text)
{
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("'\\''"))
           + QLatin1Char('\'');
}

QString forEachCommand(QString (*text)(const CommandRow &))
{
    QString all;
    for (const CommandRow &row : CommandTable::rows())
        all += text(row);
    return all;
}

QString optionWords(const CommandRow &row)
{
    QStringList words;
    const auto options = optionsOf(row);
    for (const OptionRow *option : options)
        words.append(QStringLiteral("--") + nameOf(*option));
    return words.join(QLatin1Char(' '));
}

QString bashValue(const OptionRow &option)
{
    if (const QString choices = choicesOf(option); !choices.isEmpty())
        return QStringLiteral("COMPREPLY=($(compgen -W '%1' -- \"$word\"))").arg(choices);
    return OptionTable::takesFile(option) ? QStringLiteral("compopt -o default")
                                          : QStringLiteral("true");
}

// A case of a command, and of the word before the one to be completed, for each option with a
// value.
QString bashValues(const CommandRow &row)
{
    QString cases;
    const auto options = optionsOf(row);
    for (const OptionRow *option : options) {
        if (!option->value)
            continue;
        QString words = QStringLiteral("%1:--%2").arg(nameOf(row), nameOf(*option));
        if (option->letter)
            words += QStringLiteral(" | %1:-%2").arg(nameOf(row), QLatin1String(option->letter));
        cases += QStringLiteral("    %1) %2; return ;;\n").arg(words, bashValue(*option));
    }
    return cases;
}

QString bashWords(const CommandRow &row)
{
    return QStringLiteral("    %1) words='%2' ;;\n").arg(nameOf(row), optionWords(row));
}

// Some signs have a meaning in what _arguments takes.
QString zshMeaning(const OptionRow &row)
{
    QString text = QLatin1String(row.meaning);
    for (const char sign : {'\\', '[', ']', ':'})
        text.replace(QLatin1Char(sign), QStringLiteral("\\%1").arg(QLatin1Char(sign)));
    return text;
}

QString zshValue(const OptionRow &row)
{
    if (!row.value)
        return {};
    if (const QString choices = choicesOf(row); !choices.isEmpty())
        return QStringLiteral(":value:(%1)").arg(choices);
    return OptionTable::takesFile(row) ? QStringLiteral(":value:_files")
                                       : QStringLiteral(":value:");
}

QString zshOption(const OptionRow &row)
{
    const QString rest = QStringLiteral("[%1]%2").arg(zshMeaning(row), zshValue(row));
    QString lines =
        QStringLiteral("        %1 \\\n").arg(quoted(QStringLiteral("--") + nameOf(row) + rest));
    if (row.letter)
        lines += QStringLiteral("        %1 \\\n")
                     .arg(quoted(QLatin1Char('-') + QLatin1String(row.letter) + rest));
    return lines;
}

QString zshSubject(const CommandRow &row)
{
    if (takesFile(row))
        return QStringLiteral("_files");
    const QString pages = pagesOf(row);
    return pages.isEmpty() ? pages : QStringLiteral("(%1)").arg(pages);
}

QString zshCommand(const CommandRow &row)
{
    QString text = QStringLiteral("    %1) _arguments -S \\\n").arg(nameOf(row));
    const auto options = optionsOf(row);
    for (const OptionRow *option : options)
        text += zshOption(*option);
    return text + QStringLiteral("        '*:subject:%1' ;;\n").arg(zshSubject(row));
}

QString zshSummary(const CommandRow &row)
{
    return QStringLiteral("    %1\n")
        .arg(quoted(nameOf(row) + QLatin1Char(':') + QLatin1String(row.summary)));
}

QString fishOption(const OptionRow &option)
{
    QString text = QStringLiteral(" -l ") + nameOf(option);
    if (option.letter)
        text += QStringLiteral(" -s ") + QLatin1String(option.letter);
    if (const QString choices = choicesOf(option); !choices.isEmpty())
        text += QStringLiteral(" -x -a ") + quoted(choices);
    else if (OptionTable::takesFile(option))
        text += QStringLiteral(" -r -F");
    else if (option.value)
        text += QStringLiteral(" -x");
    return text + QStringLiteral(" -d %1\n").arg(quoted(QLatin1String(option.meaning)));
}

QString fishCommand(const CommandRow &row)
{
    const QString begin =
        QStringLiteral("complete -c vospeak -n '__fish_seen_subcommand_from %1'").arg(nameOf(row));
    QString text = QStringLiteral("complete -c vospeak -n __fish_use_subcommand -a %1 -d %2\n")
                       .arg(nameOf(row), quoted(QLatin1String(row.summary)));
    if (takesFile(row))
        text += begin + QStringLiteral(" -F\n");
    if (const QString pages = pagesOf(row); !pages.isEmpty())
        text += begin + QStringLiteral(" -a %1\n").arg(quoted(pages));
    const auto options = optionsOf(row);
    for (const OptionRow *option : options)
        text += begin + fishOption(*option);
    return text;
}

const QLatin1String bashFrame(R"(# Completes vospeak in bash.
_vospeak() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command= words= i
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        -*) ;;
        *) command=${COMP_WORDS[i]}; break ;;
        esac
    done
    COMPREPLY=()
    case $command:$before in
%1    esac
    case $command in
%2    *) words='%3 --help --version' ;;
    esac
    if [[ $word == -* || -z $command ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$word"))
    elif [[ $command == help ]]; then
        COMPREPLY=($(compgen -W '%3 options' -- "$word"))
    else
        compopt -o default
    fi
}
complete -F _vospeak vospeak
)");

const QLatin1String zshFrame(R"(#compdef vospeak
# Completes vospeak in zsh.
local -a commands
commands=(
%1)
if (( CURRENT == 2 )); then
    _describe command commands
    return
fi
local name=$words[2]
shift words
(( CURRENT-- ))
case $name in
%2esac
)");

} // namespace

QString Completions::bash()
{
    return QString(bashFrame).arg(forEachCommand(bashValues), forEachCommand(bashWords),
                                  commandNames());
}

QString Completions::zsh()
{
    return QString(zshFrame).arg(forEachCommand(zshSummary), forEachCommand(zshCommand));
}

QString Completions::fish()
{
    return QStringLiteral("# Completes vospeak in fish.\ncomplete -c vospeak -f\n")
           + forEachCommand(fishCommand);
}
