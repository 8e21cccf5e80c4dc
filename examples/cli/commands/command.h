#pragma once

#include "commandline/options.h"
#include "commands/tools.h"
#include "hostkit/reason.h"
#include "terminal/exitstatus.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

class Job;

/// One thing that the user can ask for. It goes on by the signals of a job, in the event loop.
class Command : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Command)

public:
    Command(const Options &options, const Tools &tools);
    ~Command() override;

    /// To be called once, in an event loop; answered once, by ended() or failed().
    virtual void start() = 0;

    /// How the user goes on with what is interrupted now, or for want of a network, as a line;
    /// empty: by beginning anew.
    QString wayOn() const;

Q_SIGNALS:
    /// The end of which nothing more is to be told; @p status is a success, unless parts of the
    /// result are missing.
    void ended(int status);

    /// The end without a result. Why is still to be told.
    void failed(const Reason &reason);

protected:
    const Options &options() const;
    HostKit *kit() const;
    Progress *progress() const;

    void setWayOn(const QString &line);

    /// Starts @p job, which is a child of this: its progress is shown, with @p asking for a request
    /// of which nothing is known, and its failure goes to fail().
    void run(Job *job, const QString &asking = {});

    /// Prints a part of the result, @p text or, for a user who wants JSON, @p document. False,
    /// after failPrinting(), when that is impossible.
    bool print(const QString &text, const QJsonObject &document);

    /// Ends because the result cannot be printed: quietly when nobody reads it any more.
    void failPrinting();

    /// Prints the rest of the result and emits ended() with @p status, or fails.
    void finish(const QString &text, const QJsonObject &document, int status = Success);

    /// Takes the failure of a job. Emits failed(), unless the command can do without the job.
    virtual void fail(const Reason &reason);

private:
    Tools m_tools;
    Options m_options;
    QString m_wayOn;
};
