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
#include "localservice/server/operations.h"
#include "localservice/server/router.h"
#include "localservice/server/server.h"
#include "localservice/speech/recognizer.h"
#include "localservice/speech/speechapi.h"
#include "localservice/speech/synthesizer.h"
#include "localservice/speech/tasks.h"
#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"
#include "localservice/storage/storageapi.h"

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

constexpr unsigned patience = 4;       // seconds
constexpr int largeBlock = 128 * 1024; // bytes

sem_t termination;

// An orderly end waits for whatever is being worked on, which may be a call of an engine that takes
// minutes. After some seconds it is cut short; SQLite undoes what was half written at the next
// start.
void onTermination(int)
{
    sem_post(&termination);
    if (const unsigned left = alarm(patience))
        alarm(left); // not the first signal
}

void onPatienceOver(int) { _exit(0); }

// SIGINT and SIGTERM are told to the main thread when it waits for them, which may be later.
void prepareTermination()
{
    sem_init(&termination, 0, 0);
    std::signal(SIGALRM, onPatienceOver);
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
            // Such as a file that is locked; it is swept the next time.
        }
    }
}

// What is written to a standard file that was closed would go to whatever is opened next.
void openStandardFiles()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    ::close(file);
}

/// What is in the data folder.
struct Data
{
    explicit Data(const std::filesystem::path &folder)
        : lock(folder)
        , tls(prepareTlsFiles(folder / "tls"))
        , storage(folder / "storage")
        , database(folder / "accounts.sqlite")
        , upgrade(folder / "upgrade.json")
    {
        // They may have been copied here, or made by hand, with other rights.
        using std::filesystem::perms;
        std::filesystem::permissions(folder / "tls", perms::owner_all);
        std::filesystem::permissions(folder / "storage", perms::owner_all);
        std::filesystem::permissions(tls.key, perms::owner_read | perms::owner_write);
        std::filesystem::permissions(folder / "accounts.sqlite",
                                     perms::owner_read | perms::owner_write);
    }

    FolderLock lock;
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
    // The memory of a large body goes back to the system with it. By itself the allocator would
    // keep blocks of ever larger sizes, in each of its arenas.
    mallopt(M_MMAP_THRESHOLD, largeBlock);
    umask(S_IRWXG | S_IRWXO); // recordings are nobody else's business
    std::atomic<bool> stopping(false);
    const std::chrono::seconds resultLifetime(options.resultLifetime);
    const std::chrono::seconds credentialLifetime(options.credentialLifetime);

    Data data(std::filesystem::absolute(options.data));
    Server server(data.tls);
    const int port = server.bind(options.port);
    const std::string origin = "https://localhost:" + std::to_string(port);
    // One more than there are workers, so that short recordings need not wait for long ones.
    Recognizer recognizer(LOCALSERVICE_MODEL_DIR, static_cast<std::size_t>(options.workers) + 1,
                          stopping);
    Synthesizer synthesizer(stopping);
    Catalogue catalogue(synthesizer, origin);
    SignIn signIn(options, data.database, catalogue, origin);

    Credentials credentials;
    Tasks tasks(options.workers, resultLifetime, stopping);
    SpeechApi speechApi(
        {recognizer, synthesizer, data.storage, credentials, tasks, signIn.accounts},
        {origin, port, options.developmentToken, resultLifetime, credentialLifetime});
    StorageApi storageApi(data.storage, credentials, origin);
    const Operations operations(speechApi, signIn.api, catalogue, data.upgrade);
    const Router router(operations, storageApi, signIn.page, catalogue);
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
    } catch (const UsageError &error) {
        std::fprintf(stderr, "vo-localservice: %s\n", error.what());
        return wrongUse;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "vo-localservice: %s\n", error.what());
        return failure;
    }
}
