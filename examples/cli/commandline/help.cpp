#include "commandline/help.h"

#include "commandline/commandtable.h"
#include "commandline/optiontable.h"
#include "terminal/exitstatus.h"

namespace {

constexpr int widest = 80; // columns
constexpr int indent = 2;
constexpr int optionWidth = 24; // columns up to the meaning
constexpr int commandWidth = 11;

const QLatin1String
    optionNotes("\nFor --ca the variable VOSPEAK_CA and the line ca=FILE in vospeak.conf of the\n"
                "user's configuration folder stand in.\n"
                "A proxy is written http://[USER:PASSWORD@]HOST:PORT, or with socks5:// or\n"
                "socks5h://. Without --proxy the environment's https_proxy, http_proxy, all_proxy\n"
                "and no_proxy choose one; localhost and loopback addresses are asked directly.\n"
                "Every user of this machine can read --token, and a password in --proxy, in the\n"
                "list of processes. NO_COLOR turns colours off. What follows -- is no option.\n");

QString written(const OptionRow &row)
{
    QString text = row.letter ? QStringLiteral("-%1, ").arg(QLatin1String(row.letter))
                              : QStringLiteral("    ");
    text += QStringLiteral("--%1").arg(QLatin1String(row.name));
    if (row.value)
        text += QLatin1Char(' ') + QLatin1String(row.value);
    return text;
}

// What is too wide for its column has a line of its own.
QString line(const QString &left, int width, const QString &right)
{
    const QString margin(indent, QLatin1Char(' '));
    if (left.size() < width)
        return margin + left.leftJustified(width) + right + QLatin1Char('\n');
    return margin + left + QLatin1Char('\n') + margin + QString(width, QLatin1Char(' ')) + right
           + QLatin1Char('\n');
}

QString lines(const QVector<const OptionRow *> &options)
{
    QString text;
    for (const OptionRow *row : options) {
        QString meaning = QLatin1String(row->meaning);
        if (row->standard)
            meaning += QStringLiteral("; %1 by default").arg(QLatin1String(row->standard));
        text += line(written(*row), optionWidth, meaning);
    }
    return text;
}

QString exitStatuses()
{
    QString text = QStringLiteral("Exit status:");
    int column = text.size();
    for (const ExitMeaning &row : exitMeanings()) {
        const QString part = QLatin1String(row.status) + QLatin1Char(' ')
                             + QLatin1String(row.meaning) + QLatin1Char(',');
        const bool fits = column + 1 + part.size() <= widest;
        text += (fits ? QLatin1Char(' ') : QLatin1Char('\n')) + part;
        column = fits ? column + 1 + part.size() : part.size();
    }
    text.chop(1);
    return text + QStringLiteral(".\n");
}

QString aboutProgram()
{
    QString text = QStringLiteral("vospeak COMMAND [OPTIONS]\n"
                                  "Speaks and recognises by way of the speech service.\n"
                                  "  vospeak say \"good morning\" -o morning.wav\n"
                                  "  vospeak recognize morning.wav\n\n");
    for (const CommandRow &row : CommandTable::rows()) {
        QString summary = QLatin1String(row.summary);
        summary.chop(1);
        summary.replace(0, 1, summary.at(0).toLower());
        text += line(QLatin1String(row.name), commandWidth, summary);
    }
    return text
           + QStringLiteral(
               "\nvospeak help COMMAND tells more of a command, vospeak help options of what\n"
               "goes with all. Results go to standard output, all else to standard error.\n")
           + exitStatuses();
}

QString aboutCommand(const CommandRow &row)
{
    QString text = QStringLiteral("vospeak %1").arg(QLatin1String(row.name));
    if (row.subject)
        text += QLatin1Char(' ') + QLatin1String(row.subject);
    text += QStringLiteral(" [OPTIONS]\n%1\n").arg(QLatin1String(row.summary));
    if (const QString options = lines(CommandTable::options(row)); !options.isEmpty())
        text += QLatin1Char('\n') + options;
    if (row.details[0] != '\0')
        text += QLatin1Char('\n') + QLatin1String(row.details);
    if (row.members)
        text +=
            QStringLiteral("\n--json prints one object, in UTF-8 and ended by a line feed:\n%1\n")
                .arg(QLatin1String(row.members));
    return text;
}

} // namespace

QString Help::about(const QString &subject)
{
    if (subject.isEmpty())
        return aboutProgram();
    if (subject == QLatin1String("options"))
        return QStringLiteral("Options that go with every command:\n\n")
               + lines(OptionTable::common()) + aboutOptions();
    const CommandRow *row = CommandTable::find(subject);
    return row ? aboutCommand(*row) : QString();
}

QString Help::aboutOptions() { return optionNotes; }
