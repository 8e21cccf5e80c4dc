#include "localservice/accounts/accountdatabase.h"
#include "localservice/accounts/accounts.h"
#include "localservice/accounts/qrsignins.h"
#include "localservice/accounts/signinapi.h"
#include "localservice/accounts/signinpage.h"
#include "localservice/accounts/smscodes.h"
#include "localservice/base/console.h"
#include "localservice/catalogue/catalogue.h"
#include "localservice/catalogue/upgradefile.h"
#include "localservice/data/certificate.h"
#include "localservice/data/folderlock.h"
#include "localservice/options.h"
#include "localservice/pages/startpage.h"
#include "localservice/server/operations.h"
#include "localservice/server/router.h"
#include "localservice/server/server.h"
#include "localservice/speech/recognizer.h"
#include "localservice/speech/speechapi.h"
#include "localservice/speech/synthesizer.h"
#include "localservice/speech/tasks.h"
#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

using namespace localservice;

namespace {

constexpr int failure = 1;
constexpr int wrongUse = 2;

constexpr unsigned patience = 4;       // seconds, with an orderly end
constexpr int largeBlock = 128 * 1024; // bytes

sem_t termination; // posted by SIGINT and SIGTERM, be the main thread waiting for it or not

// An orderly end waits for whatever is being worked on, be it a call of an engine that takes
// minutes. The alarm cuts it short; SQLite undoes what was half written at the next start.
void onTermination(int)
{
    sem_post(&termination);
    if (const unsigned left = alarm(patience))
        alarm(left); // not the first signal
}

void prepareTermination()
{
    sem_init(&termination, 0, 0);
    std::signal(SIGALRM, [](int) { _exit(0); });
    std::signal(SIGINT, onTermination);
    std::signal(SIGTERM, onTermination);
    std::signal(SIGPIPE, SIG_IGN); // clients that are gone are noticed when writing fails
}

// Calls @p sweep every second until the process is to end.
void awaitTermination(const std::function<void()> &sweep)
{
    for (;;) {
        timespec soon{};
        clock_gettime(CLOCK_MONOTONIC, &soon);
        ++soon.tv_sec;
        if (sem_clockwait(&termination, CLOCK_MONOTONIC, &soon) == 0)
            return;
        try {
            sweep();
        } catch (const std::exception &) { // NOLINT(bugprone-empty-catch)
            // The next sweep makes up for it, such as for a file that was locked.
        }
    }
}

// Output to a standard file that was closed would go to whatever is opened next.
void openStandardFiles()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::close(file);
}

/// Everything that is kept in the data folder.
struct Data
{
    explicit Data(const std::filesystem::path &folder)
        : tls(prepareTlsFiles(folder / "tls"))
        , storage(folder / "storage")
        , database(folder / "accounts.sqlite")
        , upgrade(folder / "upgrade.json")
    {
        // Files that were copied here, or made by hand, may have other rights.
        using std::filesystem::perms;
        for (const char *name : {"tls", "storage"})
            std::filesystem::permissions(folder / name, perms::owner_all);
        for (const char *name : {"tls/server-key.pem", "accounts.sqlite"})
            std::filesystem::permissions(folder / name, perms::owner_read | perms::owner_write);
    }

    TlsFiles tls;
    Storage storage;
    AccountDatabase database;
    UpgradeFile upgrade;
};

/// Everything that takes part in signing in.
struct SignIn
{
    SignIn(const Options &options, AccountDatabase &database, Catalogue &catalogue,
           const std::string &origin)
        : accounts(database, {std::chrono::seconds(options.tokenLifetime),
                              std::chrono::seconds(options.refreshLifetime)})
        , smsCodes(database, std::chrono::seconds(options.codeLifetime))
        , qrSignIns(std::chrono::seconds(options.codeLifetime))
        , api({accounts, smsCodes, qrSignIns, catalogue}, origin)
        , page(qrSignIns, origin, accounts.local().nickname)
    {
    }

    void sweep()
    {
        accounts.sweep();
        smsCodes.sweep();
        qrSignIns.sweep();
    }

    Accounts accounts;
    SmsCodes smsCodes;
    QrSignIns qrSignIns;
    SignInApi api;
    SignInPage page;
};

void serve(const Options &options)
{
    prepareTermination();
    // The memory of a large body goes back to the system with the body. By itself the allocator
    // would keep blocks of ever larger sizes, in each of its arenas.
    mallopt(M_MMAP_THRESHOLD, largeBlock);
    umask(S_IRWXG | S_IRWXO); // recordings are nobody else's business
    std::atomic<bool> stopping(false);
    const std::chrono::seconds resultLifetime(options.resultLifetime);
    const std::chrono::seconds credentialLifetime(options.credentialLifetime);

    const std::filesystem::path folder = std::filesystem::absolute(options.data);
    lockFolder(folder);
    Data data(folder);
    Server server(data.tls);
    const int port = server.bind(options.port);
    const std::string origin = "https://localhost:" + std::to_string(port);
    // With a decoder more than there are workers, short recordings need not wait for long ones.
    Recognizer recognizer(LOCALSERVICE_MODEL_DIR, options.workers + 1, stopping);
    Synthesizer synthesizer(stopping);
    Catalogue catalogue(synthesizer, origin);
    SignIn signIn(options, data.database, catalogue, origin);

    Credentials credentials;
    Tasks tasks(options.workers, resultLifetime, stopping);
    SpeechApi speechApi(
        {recognizer, synthesizer, data.storage, credentials, tasks, signIn.accounts},
        {origin, port, options.developmentToken, resultLifetime, credentialLifetime});
    const Operations operations(speechApi, signIn.api, catalogue, data.upgrade);
    const StartPage startPage(data.tls.authority.string());
    const Router router({operations, data.storage, credentials, signIn.page, startPage, catalogue},
                        origin);
    server.start(router);

    if (options.developmentToken)
        warn("sign-in is bypassed for whoever has the development token");
    say("listening on " + origin + ", authority " + data.tls.authority.string());
    awaitTermination([&] {
        credentials.sweep();
        tasks.sweep();
        data.storage.sweep(credentialLifetime + resultLifetime, resultLifetime);
        signIn.sweep();
    });
    stopping = true;
    server.stop();
}

} // namespace

int main(int argc, char *argv[])
{
    openStandardFiles();
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help)
            return std::cout << usage() << std::flush ? 0 : failure;
        serve(options);
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vo-localservice: %s\n", error.what());
        return dynamic_cast<const UsageError *>(&error) ? wrongUse : failure;
    }
}
