#include "hostkit/job.h"

#include <QMetaObject>
#include <QTimer>

#include <utility>

Job::Job(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<Reason>();
    qRegisterMetaType<Job::Stage>("Job::Stage");
}

// Before the members of the kinds that what is under way may use.
Job::~Job() { delete m_work; }

void Job::setTimeout(int ms) { m_timeout = ms; }

void Job::setPatience(int ms) { m_patience = ms; }

void Job::start()
{
    if (std::exchange(m_isStarted, true))
        return;
    m_work = new QObject(this);
    QMetaObject::invokeMethod(
        m_work, [this] { begin(); }, Qt::QueuedConnection);
    if (m_patience > 0)
        listen();
    if (m_timeout <= 0)
        return;
    QTimer::singleShot(m_timeout, m_work, [this] {
        fail({Reason::Kind::TimedOut, tr("it took longer than %1 s").arg(m_timeout / 1000.0)});
    });
}

// Whatever is heard comes as progress.
void Job::listen()
{
    auto *silence = new QTimer(m_work);
    silence->setInterval(m_patience);
    connect(silence, &QTimer::timeout, this, [this] {
        fail({Reason::Kind::TimedOut, tr("nothing was heard for %1 s").arg(m_patience / 1000.0)});
    });
    connect(this, &Job::progressed, silence, [silence](Stage stage, qint64, qint64 total) {
        silence->start();
        if (stage == Stage::WaitingForUser && total == 0)
            silence->stop();
    });
    silence->start();
}

void Job::cancel() { fail({Reason::Kind::Cancelled, tr("cancelled")}); }

bool Job::isUnderWay() const { return m_work; }

QObject *Job::work() const { return m_work; }

bool Job::conclude()
{
    const bool wasUnderWay = isUnderWay();
    delete std::exchange(m_work, nullptr);
    return wasUnderWay;
}

// The reason is a copy: it may be a part of what goes.
void Job::fail(Reason reason)
{
    if (conclude())
        Q_EMIT failed(reason);
}
