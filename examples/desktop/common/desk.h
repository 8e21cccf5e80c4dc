#pragma once

#include "hostkit/hostkit.h"
#include "hostkit/job.h"
#include "hostkit/session.h"
#include "requests/requestlog.h"

#include <QObject>

class Catalogue;
class ServiceProcess;

/// What all pages share. It outlives them.
class Desk : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Desk)

public:
    explicit Desk(QObject *parent = nullptr);
    ~Desk() override;

    HostKit *kit();
    RequestLog *requests();
    Catalogue *catalogue() const;
    ServiceProcess *service() const;

    /// Whether requests can have a token of a user.
    bool isSignedIn() const;

    /// Jobs that are started from now on fail when nothing is heard for @p ms milliseconds.
    void setPatience(int ms);

    /// Looks whether another host, such as a second window, has signed the user in or out.
    void lookAtSession();

    /// Starts @p job, lists it as @p operation in the log of requests, and deletes it at its end.
    template <typename J>
    J *run(J *job, const QString &operation)
    {
        const QPersistentModelIndex entry = m_requests.begin(operation);
        lookAtSession();
        job->setPatience(m_patience);
        connect(job, &J::succeeded, this, [=] { end(job, entry, {}); });
        connect(job, &Job::failed, this, [=](const Reason &reason) { end(job, entry, reason); });
        connect(job, &QObject::destroyed, &m_requests, [=] { m_requests.abandon(entry); });
        job->start();
        return job;
    }

Q_SIGNALS:
    /// Another user is signed in than before, nobody any more, or the same for longer.
    void sessionChanged();

    /// A job has found the service, or has not.
    void serviceSought(bool isThere);

private:
    void end(Job *job, const QPersistentModelIndex &entry, const Reason &reason);

    HostKit m_kit;
    RequestLog m_requests;
    Session m_session;         ///< As it was last seen.
    int m_patience;            ///< Milliseconds.
    Catalogue *m_catalogue;    ///< A child.
    ServiceProcess *m_service; ///< A child.
};
