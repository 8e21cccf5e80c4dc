// Writes a document that is made from the tables of vospeak to standard output: its man page, or
// what completes its command line in a shell. The build calls it.

#include "documents/completions.h"
#include "documents/manpage.h"
#include "network/vonetwork.h"
#include "terminal/console.h"

#include <QCoreApplication>
#include <QString>

#include <algorithm>
#include <iterator>

namespace {

const struct
{
    QLatin1String name;
    QString (*text)() = nullptr;
} documents[] = {
    {QLatin1String("man"), ManPage::text},
    {QLatin1String("bash"), Completions::bash},
    {QLatin1String("zsh"), Completions::zsh},
    {QLatin1String("fish"), Completions::fish},
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(VoNetwork::GetAppVersion());
    const QString name = QCoreApplication::arguments().value(1);
    const auto *document =
        std::find_if(std::begin(documents), std::end(documents),
                     [&name](const auto &document) { return document.name == name; });
    if (document == std::end(documents)) {
        Console::show(QStringLiteral("usage: vospeak-documents man|bash|zsh|fish\n"));
        return 2;
    }
    return Console::print(document->text()) ? 0 : 1;
}
