#include "documents/manpage.h"

#include "commandline/commandtable.h"
#include "commandline/help.h"
#include "commandline/optiontable.h"
#include "terminal/exitstatus.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace {

// Text as roff takes it: a backslash and a dash have a meaning there, and so has a dot or an
// apostrophe at the beginning of a line.
QString plain(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines) {
        line.replace(QLatin1Char('\\'), QLatin1String("\\e"));
        line.replace(QLatin1Char('-'), QLatin1String("\\-"));
        if (line.startsWith(QLatin1Char('.')) || line.startsWith(QLatin1Char('\'')))
            line.prepend(QLatin1String("\\&"));
    }
    return lines.join(QLatin1Char('\n'));
}

QString bold(const QString &text) { return QStringLiteral("\\fB%1\\fR").arg(plain(text)); }

QString italic(const QString &text) { return QStringLiteral("\\fI%1\\fR").arg(plain(text)); }

// Paragraphs, which stand between empty lines.
QString paragraphs(const QString &text)
{
    QString roff = plain(text.trimmed());
    roff.replace(QLatin1String("\n\n"), QLatin1String("\n.PP\n"));
    return roff + QLatin1Char('\n');
}

QString option(const OptionRow &row)
{
    QString head = bold(QStringLiteral("--") + QLatin1String(row.name));
    if (row.letter)
        head.prepend(bold(QLatin1Char('-') + QLatin1String(row.letter)) + QStringLiteral(", "));
    if (row.value)
        head += QLatin1Char(' ') + italic(QLatin1String(row.value));
    QString meaning = QLatin1String(row.meaning);
    if (row.standard)
        meaning += QStringLiteral("; %1 by default").arg(QLatin1String(row.standard));
    return QStringLiteral(".TP\n%1\n%2\n").arg(head, plain(meaning));
}

QString options(const QVector<const OptionRow *> &rows)
{
    QString text;
    for (const OptionRow *row : rows)
        text += option(*row);
    return text;
}

QString command(const CommandRow &row)
{
    QString text = QStringLiteral(".SS %1").arg(plain(QLatin1String(row.name)));
    if (row.subject)
        text += QLatin1Char(' ') + plain(QLatin1String(row.subject));
    text += QLatin1Char('\n') + paragraphs(QLatin1String(row.summary));
    if (row.details[0] != '\0')
        text += QStringLiteral(".PP\n") + paragraphs(QLatin1String(row.details));
    text += options(CommandTable::options(row));
    if (row.members)
        text +=
            QStringLiteral(".PP\n%1 prints one object, in UTF\\-8 and ended by a line feed: %2\n")
                .arg(bold(QStringLiteral("--json")), paragraphs(QLatin1String(row.members)));
    return text;
}

QString exitStatuses()
{
    QString text;
    for (const ExitMeaning &row : exitMeanings())
        text += QStringLiteral(".TP\n%1\n%2\n")
                    .arg(QLatin1String(row.status), plain(QLatin1String(row.meaning)));
    return text;
}

QString section(const char *name, const QString &text)
{
    return QStringLiteral(".SH %1\n").arg(QLatin1String(name)) + text;
}

QString files()
{
    return QStringLiteral(".TP\n%1\nthe session, readable by the user only\n"
                          ".TP\n%2\nsettings: the line ca=FILE names an authority to trust\n")
        .arg(italic(QStringLiteral("~/.config/vospeak/session.json")),
             italic(QStringLiteral("~/.config/vospeak/vospeak.conf")));
}

} // namespace

QString ManPage::text()
{
    QString commands;
    for (const CommandRow &row : CommandTable::rows())
        commands += command(row);
    return QStringLiteral(".TH VOSPEAK 1 \"%1\" \"vospeak %2\" \"User Commands\"\n")
               .arg(QStringLiteral(RELEASE_DATE), QCoreApplication::applicationVersion())
           + section("NAME", QStringLiteral("vospeak \\- speak and recognise by way of a speech "
                                            "service\n"))
           + section("SYNOPSIS", bold(QStringLiteral("vospeak")) + QLatin1Char(' ')
                                     + italic(QStringLiteral("COMMAND"))
                                     + QStringLiteral(" [OPTIONS]\n"))
           + section("DESCRIPTION",
                     QStringLiteral("Results go to standard output, everything else to standard "
                                    "error.\n"))
           + section("COMMANDS", commands)
           + section("OPTIONS OF EVERY COMMAND", options(OptionTable::common())
                                                     + QStringLiteral(".PP\n")
                                                     + paragraphs(Help::aboutOptions()))
           + section("EXIT STATUS", exitStatuses()) + section("FILES", files());
}
