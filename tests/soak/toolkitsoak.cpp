#include "tests/soak/toolkitsoak.h"

#include "http/httprequest.h"
#include "tests/support/patience.h"
#include "tests/support/residentmemory.h"

#include <QCoreApplication>
#include <QUrl>

#include <cstdio>

namespace {

constexpr int mostRunning = 32;
constexpr double mostGrowth = 8; // MiB from the first tenth to the end

const QByteArrayList &ends()
{
    static const QByteArrayList all{"finished", "failed", "timed out", "unheard", "dropped"};
    return all;
}

} // namespace

Receiver::Receiver(Heard heard)
    : m_heard(std::move(heard))
{
}

Receiver::~Receiver() = default;

void Receiver::onFinished(QByteArray body)
{
    Q_UNUSED(body)
    pass(Moment::Finished);
}

void Receiver::onError(QNetworkReply::NetworkError code)
{
    Q_UNUSED(code)
    pass(Moment::Error);
}

void Receiver::pass(Moment moment)
{
    const Heard heard = m_heard; // it may delete this object
    heard(moment);
}

ToolkitSoak::ToolkitSoak(QByteArray server, int requests, unsigned seed)
    : m_server(std::move(server))
    , m_requests(requests)
    , m_chance(seed)
{
    renewClient();
    m_standstill.setInterval(patienceMs);
    connect(&m_standstill, &QTimer::timeout, QCoreApplication::instance(), &QCoreApplication::quit);
    m_standstill.start();
    QMetaObject::invokeMethod(this, &ToolkitSoak::fill, Qt::QueuedConnection);
}

ToolkitSoak::~ToolkitSoak()
{
    m_client.reset(); // its requests, if some are left, come to over()
}

void ToolkitSoak::fill()
{
    while (m_sent < m_requests && m_running.size() < mostRunning) {
        ++m_sent;
        const Shared exchange(new Exchange, [this](Exchange *ended) {
            m_running.remove(ended);
            over(*ended);
            delete ended;
        });
        exchange->plan = ToolkitPlan::draw(m_chance);
        m_running.insert(exchange.get());
        send(exchange);
    }
}

void ToolkitSoak::send(const Shared &exchange)
{
    const auto reach = [this, weak = std::weak_ptr<Exchange>(exchange)](Moment moment) {
        if (const Shared living = weak.lock())
            reached(moment, living);
    };
    auto *receiver = new Receiver(reach); // goes with the exchange
    exchange->receiver = receiver;
    HttpRequest request(HttpMethod::Get, m_client.get());
    request.url(QString::fromLatin1(m_server + exchange->plan.path))
        .timeout(exchange->plan.timeoutMs)
        .retry(exchange->plan.retries)
        .block(exchange->plan.block)
        .onFinished(receiver, &Receiver::onFinished)
        .onError(receiver, &Receiver::onError);
    if (exchange->plan.download)
        request.download(m_folder.filePath(QString::number(m_sent)));
    bindMoments(request, exchange);
    exchange->response = request.send();
    QTimer::singleShot(int(m_chance() % 10), this, [reach] { reach(Moment::Later); });
    reached(Moment::AtOnce, exchange);
}

void ToolkitSoak::bindMoments(HttpRequest &request, const Shared &exchange)
{
    const auto at = [this, exchange](Moment moment) {
        return [this, exchange, moment] { reached(moment, exchange); };
    };
    request.onMetaDataChanged(at(Moment::MetaData)).onTimeout(at(Moment::Timeout));
    request.onHead([on = at(Moment::Head)](const QMap<QString, QString> &) { on(); });
    request.onReadyRead([on = at(Moment::ReadyRead)](QNetworkReply *) { on(); });
    request.onDownloadFileProgress([on = at(Moment::Progress)](qint64, qint64) { on(); });
    request.onRedirected([on = at(Moment::Redirected)](const QUrl &) { on(); });
}

void ToolkitSoak::reached(Moment moment, const Shared &exchange)
{
    Exchange &it = *exchange;
    if (it.dropped && moment != Moment::AtOnce && moment != Moment::Later)
        fault(it, "a callback came after it was deleted");
    it.finished += int(moment == Moment::Finished);
    it.failed += int(moment == Moment::Error);
    it.timedOut = it.timedOut || moment == Moment::Timeout;
    if (moment == it.plan.moment && !it.deedDone) {
        it.deedDone = true;
        act(it);
    }
}

void ToolkitSoak::act(Exchange &exchange)
{
    HttpResponse *response = exchange.response;
    switch (exchange.plan.deed) {
    case Deed::Nothing:
        break;
    case Deed::Abort:
        if (response && response->request().fields.reply) // a download has none at first
            response->request().fields.reply->abort();
        break;
    case Deed::DeleteResponse:
        exchange.dropped = exchange.dropped || response;
        delete response;
        break;
    case Deed::DeleteReceiver:
        delete exchange.receiver;
        break;
    case Deed::DeleteClient:
        renewClient();
        break;
    case Deed::RunEventLoop:
        QCoreApplication::processEvents();
        break;
    }
}

// The requests of the old client end without an answer.
void ToolkitSoak::renewClient()
{
    for (Exchange *exchange : qAsConst(m_running))
        exchange->dropped = true;
    ++m_clients;
    m_client = std::make_unique<HttpClient>();
    m_client->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
}

// The client serves nothing more. Several requests find that out.
void ToolkitSoak::giveUp(int client)
{
    if (client != m_clients)
        return;
    ++m_deadClients;
    renewClient();
}

// It may be the client's end that leads here.
void ToolkitSoak::over(const Exchange &exchange)
{
    delete exchange.receiver;
    const bool unheard = exchange.plan.deed == Deed::DeleteReceiver && exchange.deedDone;
    const int outcomes = exchange.finished + exchange.failed;
    if (outcomes > 1 || (outcomes == 0 && !exchange.dropped && !unheard))
        fault(exchange, "it did not report one outcome");
    const char *end = exchange.dropped    ? "dropped"
                      : unheard           ? "unheard"
                      : exchange.timedOut ? "timed out"
                      : exchange.finished ? "finished"
                                          : "failed";
    ++m_ends[exchange.plan.path][end];
    if (exchange.timedOut && !exchange.dropped && exchange.plan.timeoutMs == ToolkitPlan::limitMs) {
        const auto give = [this, client = m_clients] { giveUp(client); };
        QMetaObject::invokeMethod(this, give, Qt::QueuedConnection);
    }
    ++m_over;
    for (const int part : {10, 50, 100}) {
        if (m_over == qint64(m_requests) * part / 100)
            m_memory.insert(part, double(residentMemory()) / (1024 * 1024));
    }
    m_standstill.start();
    if (m_over == m_requests)
        QCoreApplication::quit();
    else
        QMetaObject::invokeMethod(this, &ToolkitSoak::fill, Qt::QueuedConnection);
}

void ToolkitSoak::fault(const Exchange &exchange, const char *what)
{
    ++m_faults;
    std::printf("%s%s%s, deed %d at moment %d: %s; %d finished, %d failed\n",
                exchange.plan.path.constData(), exchange.plan.block ? ", blocking" : "",
                exchange.plan.download ? ", download" : "", int(exchange.plan.deed),
                int(exchange.plan.moment), what, exchange.finished, exchange.failed);
}

bool ToolkitSoak::report()
{
    for (const Exchange *exchange : qAsConst(m_running))
        fault(*exchange, "it is not over");
    std::printf("%-12s", "");
    for (const QByteArray &end : ends())
        std::printf("%10s", end.constData());
    for (auto path = m_ends.cbegin(); path != m_ends.cend(); ++path) {
        std::printf("\n%-12s", path.key().constData());
        for (const QByteArray &end : ends())
            std::printf("%10d", path->value(end));
    }
    std::printf("\n%d of %d requests are over, %d faults; %d clients, %d of which went dead\n",
                m_over, m_requests, m_faults, m_clients, m_deadClients);
    std::printf("resident memory: %.1f MiB after 10 %%, %.1f after 50 %%, %.1f after all\n",
                m_memory.value(10), m_memory.value(50), m_memory.value(100));
#ifdef __SANITIZE_ADDRESS__
    const bool grew = false; // the sanitiser keeps what was freed
#else
    const bool grew = m_memory.value(100) - m_memory.value(10) > mostGrowth;
#endif
    if (grew)
        std::printf("memory grew by more than %.0f MiB\n", mostGrowth);
    return m_over == m_requests && m_faults == 0 && !grew;
}
