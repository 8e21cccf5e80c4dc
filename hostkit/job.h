#pragma once

#include "hostkit/reason.h"

#include <QObject>

/// One thing that a user asks for, from beginning to end: it is started once, tells how it gets on,
/// and ends with exactly one of succeeded(), which each kind of job declares, and failed().
///
/// A job belongs to the thread that made it, which has to run an event loop, and never makes it
/// wait. It may be deleted at any moment, also in a handler of its own signals; what it has going
/// on ends then, and nothing follows. A task of the service goes on without the job.
class Job : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Job)

public:
    /// What a job is doing.
    enum class Stage {
        Asking,         ///< A request is under way; nothing is known of its length.
        Uploading,      ///< A recording is sent; in bytes.
        Working,        ///< The service has queued or runs a task; in seconds since it was named.
        Fetching,       ///< Something is downloaded; in bytes.
        WaitingForUser, ///< The user has to confirm, or to enter something; in seconds.
    };
    Q_ENUM(Stage)

    /// In which form a text is spoken or a recording recognised.
    enum class Form {
        ByLength, ///< Short if that is possible.
        Short,    ///< In one answer, for short texts and recordings.
        Long,     ///< As a task, which is asked after until it is over.
    };
    Q_ENUM(Form)

    /// Does nothing before start().
    explicit Job(QObject *parent = nullptr);
    ~Job() override;

    /// Lets the job fail when it has taken @p ms milliseconds; 0, the default: it may take for
    /// ever. To be called before start().
    void setTimeout(int ms);

    /// Lets the job fail when nothing has been heard for @p ms milliseconds, however long it takes
    /// as a whole; 0, the default: silence may last for ever. While the user is waited for, and has
    /// no limit, nothing need be heard. To be called before start().
    void setPatience(int ms);

    /// Starts the job, once; nothing is emitted before control is back in the event loop.
    void start();

    /// Ends what is going on. failed() is emitted, with Reason::Kind::Cancelled, before this
    /// returns; a job that is not under way does nothing.
    void cancel();

    /// Whether it has been started and has not ended.
    bool isUnderWay() const;

Q_SIGNALS:
    /// @p done and @p total are in the units of the stage; @p total is 0 where nobody knows it.
    void progressed(Job::Stage stage, qint64 done, qint64 total);

    /// The end without success. Reason::line() is for the user.
    void failed(const Reason &reason);

protected:
    /// Does the work, in the event loop.
    virtual void begin() = 0;

    /// What is under way are children of this object, and connections have it as their context: it
    /// goes when the job ends.
    QObject *work() const;

    /// Ends the job, whose kind emits succeeded() next. False when it has ended before.
    bool conclude();

    /// Ends the job with @p reason, unless it has ended before. The job may be gone afterwards.
    void fail(Reason reason);

private:
    void listen();

    QObject *m_work = nullptr; ///< Owned, while the job is under way.
    int m_timeout = 0;         ///< Milliseconds, like the next one.
    int m_patience = 0;
    bool m_isStarted = false;
};
