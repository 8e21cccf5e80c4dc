#include "http/probeclient.h"

#include "http/httpclient.h"

#include <QCoreApplication>
#include <QThread>
#include <QThreadStorage>

namespace {

bool isApplicationsThread() { return qApp && qApp->thread() == QThread::currentThread(); }

class ProbeClients
{
public:
    ProbeClients() = default;
    Q_DISABLE_COPY(ProbeClients)
    ~ProbeClients() { qRemovePostRoutine(&ProbeClients::endLocal); } // a plugin may be unloaded

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
    // The storage of the application's thread ends inside the application's destructor, when Qt
    // delivers nothing any more: what an ended request left to the access manager's own thread
    // would never be deleted. The routine runs before that.
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
