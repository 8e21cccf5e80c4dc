#pragma once

#include <QObject>
#include <QString>

#include <memory>

class Progress;
class VoNetworkIntf;
struct Options;

/// One thing that the user can ask for. Driven by the service's signals, it needs an event loop.
class Command : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Command)

public:
    /// The command that @p options ask for. The service and the progress line must outlive it.
    static std::unique_ptr<Command> make(const Options &options, VoNetworkIntf *service,
                                         Progress *progress);

    /// What can be said when the service object reports a failure: it gives no reason.
    static QString refusedByService();

    Command();
    ~Command() override;

    /// To be called once; answered by succeeded() or failed().
    virtual void start() = 0;

Q_SIGNALS:
    void succeeded();

    /// The line is for the user.
    void failed(const QString &problem);
};
