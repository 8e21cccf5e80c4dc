#include "benchmarks/contender.h"
#include "benchmarks/work.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>

namespace {

class Service : public Contender
{
public:
    ~Service() override { release(); }

    void perform(const Work &work, int count) override
    {
        for (int i = 0; i < count; ++i) {
            if (!m_service)
                m_service = VoNetwork::CreateVoNetworkIntf(); // released below
            switch (work.kind) {
            case Kind::Voices:
                listVoices();
                break;
            case Kind::Speech:
                speak();
                break;
            case Kind::Start:
                qDeleteAll(m_service->GetBgmList());
                release();
                break;
            default:
                qFatal("not a work of the service");
            }
        }
    }

private:
    void listVoices()
    {
        const QList<DubInfo *> voices = m_service->GetDubList();
        if (voices.isEmpty())
            qFatal("no voices");
        qDeleteAll(voices);
    }

    void speak()
    {
        QEventLoop loop;
        QObject::connect(m_service, &VoNetworkIntf::signalTTSRet, &loop,
                         [&loop](TTS_STATUS status, const QString &audio) {
                             if (status != TTS_SUCCESS || audio.isEmpty())
                                 qFatal("no audio");
                             loop.quit();
                         });
        TTSParams params;
        params.text = QStringLiteral("hello world");
        m_service->TTS(&params, true, 0);
        loop.exec();
    }

    void release()
    {
        if (!m_service)
            return;
        VoNetwork::ReleaseVoNetwork(m_service);
        m_service = nullptr;
        // The first goes and leaves its access manager to be deleted.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    VoNetworkIntf *m_service = nullptr; ///< Owned.
};

} // namespace

std::unique_ptr<Contender> makeService() { return std::make_unique<Service>(); }
