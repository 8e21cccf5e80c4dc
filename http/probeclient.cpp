#include "http/probeclient.h"

#include "http/httpclient.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadStorage>

namespace {

bool isApplicationsThread() { return qApp && qApp->thread() == QThread::currentThread(); }

// The clients of all threads. Each goes with its thread.
class ProbeClients
{
public:
    ProbeClients() = default;
    Q_DISABLE_COPY(ProbeClients)
    // A plugin that has the toolkit may be unloaded before the application ends.
    ~ProbeClients() { qRemovePostRoutine(&ProbeClients::endLocal); }

    static ProbeClients &instance()
    {
        static ProbeClients clients;
        return clients;
    }

    HttpClient *local()
    {
        if (!m_clients.hasLocalData())
            add();
        return m_clients.localData();
    }

private:
    // QThreadStorage would delete the client of the application's thread at the end of the
    // application's destructor, when Qt delivers nothing any more: what an ended request left to
    // the access manager's own thread would leak. Qt calls post routines before that.
    void add()
    {
        m_clients.setLocalData(new HttpClient);
        if (isApplicationsThread())
            qAddPostRoutine(&ProbeClients::endLocal);
    }

    static void endLocal() { instance().m_clients.setLocalData(nullptr); }

    QThreadStorage<HttpClient *> m_clients; // owns them
};

} // namespace

HttpClient *probeClient() { return ProbeClients::instance().local(); }
