#pragma once

#include "network/vonetwork.h"
#include "network/vonetworkintf.h"
#include "tests/network/answers.h"
#include "tests/network/operation.h"
#include "tests/network/temporaryfolder.h"
#include "tests/network/text.h"
#include "tests/support/logcapture.h"
#include "tests/support/scriptedserver.h"
#include "tests/support/trust.h"

#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>

/// Around every test: a server that plays the service where the library looks for it, a service
/// object, a host that writes down its answers, the log, and a temporary folder in which the host
/// has made the folder "VoTTS". On this machine the service object finds no device-identifier
/// command unless a test makes one.
class ServiceTest : public QObject
{
    Q_OBJECT

public:
    /// The texts of the network and the headers of the toolkit below follow the locale, the dates
    /// the time zone: 05:30 hours before UTC's.
    static void initMain();

protected:
    /// Ends the wait of a test for what a server or a service object does.
    static bool waitUntil(const std::function<bool()> &condition);

    /// The answers once @p count of them have come and the service object is gone with all that it
    /// had going on, so that none can follow.
    QStringList outcome(int count = 1);

    /// Calls @p operation, and releases the service object once @p count signals have come or the
    /// result is there. The result, written, and every signal.
    QStringList outcomeOf(const Operation &operation, int count = 1);

    /// Releases the service object and waits until it and its requests are gone.
    void release();

    /// All log lines; those that are no debug lines have their kind in front of them, and the
    /// temporary folder's path is "<temporary>".
    QStringList logged() const;

    /// The server's connections that have not ended, in the order in which they were made.
    QList<QSslSocket *> connections() const;

    /// Ends the @p index-th of the connections() with @p bytes.
    void answerLate(int index, const QByteArray &bytes);

    std::unique_ptr<TemporaryFolder> temporary;
    std::unique_ptr<TrustTestAuthority> trust;
    std::unique_ptr<ScriptedServer> server;
    std::unique_ptr<LogCapture> log;
    VoNetworkIntf *service = nullptr;
    std::unique_ptr<Answers> answers;

protected Q_SLOTS:
    void init();
    void cleanup();
};
