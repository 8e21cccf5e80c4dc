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
    /// The time-out of a request that is to be answered. Longer than any answer takes: what waits
    /// so long waits for a client that serves the host no more.
    static constexpr int limitMs = 3000;

    static ToolkitPlan draw(std::mt19937 &chance);

    QByteArray path;
    Deed deed = Deed::Nothing;
    Moment moment = Moment::AtOnce;
    int timeoutMs = limitMs;
    int retries = 0;
    bool block = false;
    bool download = false;
};
