#include "commands/fetch.h"

#include "hostkit/fetchjob.h"
#include "terminal/console.h"

#include <QFileInfo>
#include <QUrl>
#include <QVector>

#include <algorithm>

namespace {

// The name is plain, without folders: an address does not choose where its file goes.
QString nameIn(const QUrl &address)
{
    const QString name = address.fileName(QUrl::FullyDecoded);
    const QVector<uint> characters = name.toUcs4();
    const bool isPlain = QFileInfo(name).fileName() == name && name != QLatin1String(".")
                         && name != QLatin1String("..")
                         && std::all_of(characters.begin(), characters.end(), Console::isPlain);
    return isPlain ? name : QString();
}

} // namespace

QString Fetch::read(Options &options)
{
    options.address = options.subjects.at(0);
    const QUrl address(options.address, QUrl::TolerantMode);
    if ((address.scheme() != QLatin1String("https") && address.scheme() != QLatin1String("http"))
        || address.host().isEmpty())
        return QStringLiteral("fetch needs an address that begins with https:// or http://");
    if (options.output.isNull())
        options.output = nameIn(address);
    if (options.output.isEmpty())
        return QStringLiteral("the address has no name for the file; name one (-o FILE)");
    return {};
}

QString Fetch::prepare(Options &options)
{
    return FetchJob::problem(options.output, options.resume).text;
}

void Fetch::start()
{
    auto *job = new FetchJob(options().address, options().output, options().resume, this);
    connect(job, &FetchJob::succeeded, this, [this](const QString &path, qint64 bytes) {
        finish({}, {{QStringLiteral("file"), path}, {QStringLiteral("bytes"), bytes}});
    });
    connect(job, &Job::progressed, this, [this](Job::Stage stage) {
        if (stage == Job::Stage::Fetching)
            setWayOn(QStringLiteral("what came is kept; the same command with --resume goes on"));
    });
    run(job, QStringLiteral("asking for the file"));
}
