// Fuzzes how a host reads the file of its session. The input is the file.

#include "hostkit/session.h"
#include "hostkit/sessionfile.h"
#include "input.h"
#include "qthost.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

bool isSame(const Session &one, const Session &other)
{
    return one.userId == other.userId && one.nickname == other.nickname && one.token == other.token
           && one.refreshToken == other.refreshToken && one.tokenExpiry == other.tokenExpiry
           && one.refreshExpiry == other.refreshExpiry;
}

std::string prepareFolder(const QtHost &host)
{
    const QString home = QString::fromStdString(host.folder().path().string());
    const QString file = SessionFile::path();
    require(file.startsWith(home), "the folder is the fuzzer's own");
    QDir().mkpath(QFileInfo(file).path());
    return QDir(home).relativeFilePath(file).toStdString();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    static const std::string file = prepareFolder(host);
    host.folder().write(file, Input(data, size).rest());
    const Session session = SessionFile::load();
    if (!session.isValid())
        return 0;
    const Session kept = Session::from(session.toJson()); // its times are in whole seconds
    require(kept.isValid() && isSame(Session::from(kept.toJson()), kept),
            "a session is read as it was written");
    require(SessionFile::save(session).isEmpty() && isSame(SessionFile::load(), kept),
            "a session that is kept is there again");
    return 0;
}
