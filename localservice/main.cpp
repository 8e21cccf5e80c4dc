#include "accountdatabase.h"
#include "accounts.h"
#include "catalogue.h"
#include "certificate.h"
#include "console.h"
#include "credentials.h"
#include "operations.h"
#include "options.h"
#include "qrsignins.h"
#include "recognizer.h"
#include "server.h"
#include "signinapi.h"
#include "signinpage.h"
#include "smscodes.h"
#include "speechapi.h"
#include "storage.h"
#include "storageapi.h"
#include "sweeper.h"
#include "synthesizer.h"
#include "tasks.h"
#include "upgradefile.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <sys/stat.h>

using namespace localservice;

namespace {

constexpr int failure = 1;
constexpr int wrongUse = 2;

// Blocked in every thread: the main thread takes them when it is ready to.
sigset_t blockTermination()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN); // clients that are gone are noticed when writing fails
    return signals;
}

void serve(const Options &options)
{
    const sigset_t termination = blockTermination();
    umask(S_IRWXG | S_IRWXO); // recordings are nobody else's business
    std::atomic<bool> stopping(false);
    const std::chrono::seconds resultLifetime(options.resultLifetime);
    const std::chrono::seconds credentialLifetime(options.credentialLifetime);
    const std::chrono::seconds codeLifetime(options.codeLifetime);

    const std::filesystem::path data = std::filesystem::absolute(options.data);
    const TlsFiles tls = prepareTlsFiles(data / "tls");
    Storage storage(data / "storage");
    AccountDatabase database(data / "accounts.sqlite");
    UpgradeFile upgrade(data / "upgrade.json");
    Server server(tls);
    const int port = server.bind(options.port);
    const std::string origin = "https://localhost:" + std::to_string(port);
    // One more than there are workers, so that short recordings need not wait for long ones.
    Recognizer recognizer(LOCALSERVICE_MODEL_DIR, static_cast<std::size_t>(options.workers) + 1,
                          stopping);
    Synthesizer synthesizer(stopping);
    Catalogue catalogue(synthesizer, origin);

    Accounts accounts(database, {std::chrono::seconds(options.tokenLifetime),
                                 std::chrono::seconds(options.refreshLifetime)});
    SmsCodes smsCodes(database, codeLifetime);
    QrSignIns qrSignIns(codeLifetime);
    SignInApi signInApi({accounts, smsCodes, qrSignIns, catalogue}, origin);
    SignInPage signInPage(qrSignIns, origin, accounts.local().nickname);

    Credentials credentials;
    Tasks tasks(options.workers, resultLifetime, stopping);
    SpeechApi speechApi({recognizer, synthesizer, storage, credentials, tasks, accounts},
                        {port, options.developmentToken, resultLifetime, credentialLifetime});
    StorageApi storageApi(storage, credentials, port);
    const Operations operations(speechApi, signInApi, catalogue, upgrade);
    const Sweeper sweeper([&] {
        credentials.sweep();
        tasks.sweep();
        storage.sweep(credentialLifetime + resultLifetime, resultLifetime);
        accounts.sweep();
        smsCodes.sweep();
        qrSignIns.sweep();
    });
    server.start({operations, storageApi, signInPage, catalogue});

    if (options.developmentToken)
        warn("sign-in is bypassed for whoever has the development token");
    say("listening on " + origin + ", authority " + tls.authority.string());
    int signal = 0;
    sigwait(&termination, &signal);
    stopping = true;
    server.stop();
}

} // namespace

int main(int argc, char *argv[])
{
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help)
            std::cout << usage();
        else
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
