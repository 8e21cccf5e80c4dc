// Downloads a file, lets the application go, and counts the threads of access managers that are
// left just before the application stops delivering events. Objects that such a thread has to
// delete would leak from there on.

#include "http/httpclient.h"
#include "http/httprequest.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/testfolder.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QThread>

#include <cstdio>

namespace {

int g_before = 0;
int g_left = 0;

// Linux keeps 15 characters of the name that Qt gives to such a thread.
int networkThreads()
{
    const QDir threads(QStringLiteral("/proc/self/task"));
    const QStringList ids = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    int count = 0;
    for (const QString &id : ids) {
        QFile name(threads.filePath(id + QStringLiteral("/comm")));
        if (name.open(QIODevice::ReadOnly) && name.readAll().startsWith("QNetworkAccessM"))
            ++count;
    }
    return count;
}

// Qt has waited for a thread that ended, the system lists it a moment longer. One that was left
// alone stays for good.
int networkThreadsThatStay()
{
    const QDeadlineTimer limit(5000);
    while (networkThreads() > 0 && !limit.hasExpired())
        QThread::yieldCurrentThread();
    return networkThreads();
}

bool download(const QString &address, const QString &path)
{
    HttpClient client;
    QEventLoop loop;
    HttpRequest(HttpMethod::Get, &client)
        .url(address)
        .download(path)
        .onFinished([&loop] { loop.quit(); })
        .send();
    loop.exec();
    g_before = networkThreads();
    return QFile::exists(path);
}

} // namespace

int main(int argc, char **argv)
{
    bool downloaded = false;
    // Runs last, since it was added first.
    qAddPostRoutine([] { g_left = networkThreadsThatStay(); });
    {
        const QCoreApplication application(argc, argv);
        const TestFolder folder;
        ScriptedServer server;
        server.answer(ScriptedServer::reply("abc"));
        downloaded =
            server.start()
            && download(server.address(QStringLiteral("/f")), folder.path(QStringLiteral("file")));
    }
    std::printf("downloaded: %d; threads of access managers: %d, then %d\n", downloaded, g_before,
                g_left);
    return downloaded && g_before > 0 && g_left == 0 ? 0 : 1;
}
