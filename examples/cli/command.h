#pragma once

#include "network/vonetworkintf.h"
#include "tools.h"

#include <QJsonObject>
#include <QObject>
#include <QString>

#include <memory>

struct Options;

/// One thing that the user can ask for. It goes on by the service's signals, in the event loop.
class Command : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Command)

public:
    /// The command that @p options ask for.
    static std::unique_ptr<Command> make(const Options &options, const Tools &tools);

    /// What the user is told when the service object reports a failure and the log has no reason.
    static QString refusedByService();

    Command(const Options &options, const Tools &tools);
    ~Command() override;

    /// To be called once, in an event loop; answered once, by succeeded() or failed().
    virtual void start() = 0;

Q_SIGNALS:
    void succeeded();

    /// @p problem is a line for the user.
    void failed(const QString &problem);

protected:
    VoNetworkIntf *service() const;
    TokenKeeper *tokens() const;
    Progress *progress() const;

    /// Prints the result, @p text or, for a user who wants JSON, @p document, and emits the answer.
    void finish(const QString &text, const QJsonObject &document);

private:
    Tools m_tools;
    bool m_json;
};
