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

#include <memory>

/// The surroundings of each test: a server that answers where the library looks for the service, a
/// service object, a host that records its answers, the log, and a temporary folder in which the
/// host has made the folder "VoTTS". The service object finds no command for the device identifier
/// unless a test makes one.
class ServiceTest : public QObject
{
    Q_OBJECT

public:
    /// Fixes the locale, on which texts of errors and headers of Qt depend, and the time zone of
    /// local times, which is 05:30 hours ahead of UTC.
    static void initMain();

protected:
    /// The answers once @p count of them have come and the service object is gone with all that it
    /// had going on, so that none can follow.
    QStringList outcome(int count = 1);

    /// Calls @p operation, and releases the service object once @p count signals have come or the
    /// result is there. Returns the recorded result and every signal.
    QStringList outcomeOf(const Operation &operation, int count = 1);

    /// Releases the service object and waits until it and its requests are gone.
    void release();

    /// All log lines. A line that is no debug line has its kind in front, and the temporary
    /// folder's path stands as "<temporary>".
    QStringList logged() const;

    /// The server's connections that have not ended, in the order in which they were made.
    QList<QSslSocket *> connections() const;

    /// Ends the @p index-th of the connections() with @p bytes.
    void answerLate(int index, const QByteArray &bytes);

    /// Rows of a file server's "reply" that is a network error: what is in the file "instead" of
    /// what was asked for, and Qt's name of the "error".
    static void addFailedFetches();

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
