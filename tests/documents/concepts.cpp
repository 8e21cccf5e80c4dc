// The samples of docs/concepts.md.

#include "network/vonetworkintf.h"

#include <QObject>
#include <QPointer>
#include <QString>

class VoiceList : public QObject
{
public:
    explicit VoiceList(VoNetworkIntf *service)
        : m_service(service)
    {
    }

    void refresh();

protected:
    virtual void show(const QList<DubInfo *> &voices) = 0;

private:
    VoNetworkIntf *m_service;
    bool m_isWaiting = false;
};

void VoiceList::refresh()
{
    if (m_isWaiting)
        return; // a second click, delivered in the wait of the first
    m_isWaiting = true;
    const QPointer<VoiceList> self(this); // the window may be closed in the wait
    const QList<DubInfo *> voices = m_service->GetDubList();
    if (self) {
        m_isWaiting = false;
        show(voices);
    }
    qDeleteAll(voices);
}

QString &lastReason()
{
    static thread_local QString reason;
    return reason;
}

QtMessageHandler g_shown = nullptr;

void keepReasons(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg)
        g_shown(type, context, message);
    else if (message.leftRef(9).contains(QLatin1String("[error]")))
        lastReason() = message; // for the next error message, and for nobody else's log
}

void hideLog()
{
    g_shown = qInstallMessageHandler(nullptr); // what was there before
    qInstallMessageHandler(keepReasons);
}
