#pragma once

#include "hostkit/reason.h"
#include "tools.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <memory>

class Job;
struct Options;

/// One thing that the user can ask for. It goes on by the signals of a job, in the event loop.
class Command : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Command)

public:
    /// The command that @p options ask for.
    static std::unique_ptr<Command> make(const Options &options, const Tools &tools);

    Command(const Options &options, const Tools &tools);
    ~Command() override;

    /// To be called once, in an event loop; answered once, by succeeded() or failed().
    virtual void start() = 0;

Q_SIGNALS:
    void succeeded();
    void failed(const Reason &reason);

protected:
    HostKit *kit() const;
    Progress *progress() const;

    /// Starts @p job, which is a child of this: its progress is shown, with @p asking for a request
    /// of which nothing is known, and its failure is that of the command.
    void run(Job *job, const QString &asking = {});

    /// Prints the result, @p text or, for a user who wants JSON, @p document, and emits the answer.
    void finish(const QString &text, const QJsonObject &document);

private:
    Tools m_tools;
    bool m_json;
};
