#include "commandline/commandline.h"

#include "commandline/commandtable.h"
#include "commandline/help.h"
#include "commandline/optiontable.h"
#include "commandline/suggestion.h"

#include <QCoreApplication>
#include <QSet>

namespace {

const QString helpName = QStringLiteral("help");

QStringList commandNames()
{
    QStringList names;
    for (const CommandRow &row : CommandTable::rows())
        names.append(QLatin1String(row.name));
    return names;
}

QStringList optionNames()
{
    QStringList names;
    for (const OptionRow &row : OptionTable::rows())
        names.append(QLatin1String(row.name));
    names.removeDuplicates();
    return names;
}

QString unknownCommand(const QString &name)
{
    return QStringLiteral("unknown command \"%1\"%2")
        .arg(name, Suggestion::of(name, commandNames(), QString()));
}

QString unknownOption(const QString &name)
{
    const QString dashes = QString(name.size() > 1 ? 2 : 1, QLatin1Char('-'));
    return QStringLiteral("unknown option \"%1%2\"%3")
        .arg(dashes, name, Suggestion::of(name, optionNames(), QStringLiteral("--")));
}

} // namespace

CommandLine::CommandLine(const QStringList &arguments)
{
    declare();
    m_options.json = arguments.contains(QLatin1String("--json")); // for problems, too
    const bool isParsed = m_parser.parse(arguments);
    m_options.command = CommandTable::find(m_parser.positionalArguments().value(0));
    if (isParsed)
        read();
    else if (const QStringList unknown = m_parser.unknownOptionNames(); !unknown.isEmpty())
        complain(unknownOption(unknown.at(0)));
    else
        complain(m_parser.errorText());
}

QString CommandLine::problem() const { return m_problem; }

QString CommandLine::information() const { return m_information; }

const Options &CommandLine::options() const { return m_options; }

void CommandLine::declare()
{
    QSet<QString> declared;
    for (const OptionRow &row : OptionTable::rows()) {
        const QString name = QLatin1String(row.name);
        if (declared.contains(name))
            continue;
        declared.insert(name);
        QStringList names{name};
        if (row.letter)
            names.append(QLatin1String(row.letter));
        m_parser.addOption({names, QString(), QLatin1String(row.value)});
    }
}

void CommandLine::read()
{
    const QStringList words = m_parser.positionalArguments();
    if (m_parser.isSet(QStringLiteral("version")))
        m_information = QStringLiteral("%1 %2\n").arg(QCoreApplication::applicationName(),
                                                      QCoreApplication::applicationVersion());
    else if (m_parser.isSet(helpName))
        readHelp(words.value(0));
    else if (words.isEmpty())
        complain(QStringLiteral("no command"));
    else if (!m_options.command)
        complain(unknownCommand(words.at(0)));
    else
        readCommand();
}

void CommandLine::readHelp(const QString &subject)
{
    m_information = Help::about(subject);
    if (m_information.isEmpty())
        complain(unknownCommand(subject));
}

void CommandLine::readCommand()
{
    const CommandRow &command = *m_options.command;
    const QString name = QLatin1String(command.name);
    m_options.subjects = m_parser.positionalArguments().mid(1);
    const int subjects = m_options.subjects.size();
    if (command.most == 0 && subjects > 0)
        complain(QStringLiteral("%1 takes no argument").arg(name));
    else if (subjects < command.fewest)
        complain(QStringLiteral("%1 needs %2").arg(name, QLatin1String(command.subject)));
    else if (subjects > command.most)
        complain(QStringLiteral("%1 takes one argument; put a text in quotation marks").arg(name));
    readOptions();
    if (!m_problem.isEmpty())
        return;
    if (!command.make)
        readHelp(m_options.subjects.value(0));
    else if (command.read)
        complain(command.read(m_options));
}

void CommandLine::readOptions()
{
    QVector<const OptionRow *> fitting = CommandTable::options(*m_options.command);
    fitting += OptionTable::common();
    QStringList names;
    for (const OptionRow *row : qAsConst(fitting))
        names.append(QLatin1String(row->name));
    const QStringList all = optionNames();
    for (const QString &name : all) {
        if (m_parser.isSet(name) && !names.contains(name))
            complain(QStringLiteral("--%1 does not go with %2")
                         .arg(name, QLatin1String(m_options.command->name)));
    }
    for (const OptionRow *row : qAsConst(fitting))
        readOption(*row);
}

void CommandLine::readOption(const OptionRow &row)
{
    const QString name = QLatin1String(row.name);
    if (m_parser.isSet(name))
        complain(row.read(m_options, m_parser.value(name)));
    else if (row.standard)
        row.read(m_options, QLatin1String(row.standard));
}

// Keeps the first problem; those that follow may come of it.
void CommandLine::complain(const QString &problem)
{
    if (problem.isEmpty() || !m_problem.isEmpty())
        return;
    const QString more = m_options.command
                             ? QStringLiteral("help %1").arg(QLatin1String(m_options.command->name))
                             : QStringLiteral("--help");
    m_problem = QStringLiteral("%1 (see vospeak %2)").arg(problem, more);
}
