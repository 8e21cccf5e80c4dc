#pragma once

#include "http/httpclient.h"
#include "http/httpresponse.h"
#include "tests/soak/toolkitplan.h"

#include <QMap>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>
#include <random>

class HttpRequest;

/// The receiver of a request's outcome.
class Receiver : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Receiver)

public:
    using Heard = std::function<void(Moment)>;

    explicit Receiver(Heard heard);
    ~Receiver() override;

    void onFinished(QByteArray body);
    void onError(QNetworkReply::NetworkError code);

private:
    void pass(Moment moment);

    Heard m_heard;
};

/// Sends requests to a server that misbehaves, and does to them what their plans say. Each is
/// watched until the toolkit has nothing of it left.
class ToolkitSoak : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ToolkitSoak)

public:
    /// @p server: scheme, host and port. The event loop ends when all is over, or when no request
    /// has come to an end for as long as tests are patient.
    ToolkitSoak(QByteArray server, int requests, unsigned seed);
    ~ToolkitSoak() override;

    /// Prints the figures. False when a request was lost, reported no outcome, two, or anything
    /// after it was deleted, or when memory grew.
    bool report();

private:
    /// A request. Its callbacks hold it, so it goes with the last of them.
    struct Exchange
    {
        ToolkitPlan plan;
        QPointer<HttpResponse> response;
        QPointer<Receiver> receiver;
        bool deedDone = false;
        bool dropped = false; ///< Deleted, as a response or with its client: nothing may follow.
        bool timedOut = false;
        int finished = 0;
        int failed = 0;
    };
    using Shared = std::shared_ptr<Exchange>;

    void fill();
    void send(const Shared &exchange);
    void bindMoments(HttpRequest &request, const Shared &exchange);
    void reached(Moment moment, const Shared &exchange);
    void act(Exchange &exchange);
    void renewClient();
    void giveUp(int client);
    void over(const Exchange &exchange);
    void fault(const Exchange &exchange, const char *what);

    const QByteArray m_server;
    const int m_requests;
    const QTemporaryDir m_folder; ///< For downloads.
    std::mt19937 m_chance;
    QSet<Exchange *> m_running;
    std::unique_ptr<HttpClient> m_client;
    QTimer m_standstill;
    int m_sent = 0;
    int m_over = 0;
    int m_faults = 0;
    int m_clients = 0; ///< Their number so far; also that of the one in use.
    int m_deadClients = 0;
    QMap<QByteArray, QMap<QByteArray, int>> m_ends; ///< By path and kind.
    QMap<int, double> m_memory;                     ///< MiB, by the part that is over in per cent.
};
