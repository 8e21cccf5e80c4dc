#pragma once

#include <QByteArray>

#include <random>

/// What the soak does to a request, or to what it needs, while it is under way.
enum class Deed {
    Nothing,
    Abort,
    DeleteResponse,
    DeleteReceiver,
    DeleteClient,
    RunEventLoop,
};

/// When it is done: right after sending, up to 10 ms later, or in a callback.
enum class Moment {
    AtOnce,
    Later,
    Head,
    ReadyRead,
    Progress,
    MetaData,
    Redirected,
    Finished,
    Error,
    Timeout,
};

/// What is planned for one request.
struct ToolkitPlan
{
    /// The time-out of a request that is to be answered, longer than any answer takes. A request
    /// that reaches it was sent through a client that does not serve the host any more.
    static constexpr int patienceMs = 3000;

    static ToolkitPlan draw(std::mt19937 &chance);

    QByteArray path;
    Deed deed = Deed::Nothing;
    Moment moment = Moment::AtOnce;
    int timeoutMs = patienceMs;
    int retries = 0;
    bool block = false;
    bool download = false;
};
