#pragma once

#include "http/httprequest.h"

#include <QStringList>

/// Records which callbacks run, and with what values, over all attempts of a request. Binds no form
/// that would take the reply over. Must outlive the exchange.
class CallbackLog
{
    Q_DISABLE_COPY(CallbackLog)

public:
    CallbackLog() = default;

    /// Binds a callback for both outcomes in every form but the reply, for retried() and
    /// repeated().
    HttpRequest &bindOutcomes(HttpRequest &request);

    /// Binds every form of the callbacks about the file of a download.
    HttpRequest &bindFile(HttpRequest &request);

    /// Binds the time-out without its reply.
    HttpRequest &bindTimeout(HttpRequest &request);

    /// Appends a line of the test's own, to see its place in the order.
    void add(const QString &line) { m_lines.append(line); }

    QStringList lines() const { return m_lines; }

    /// How many outcomes, of either sort, were reported.
    int outcomes() const;

private:
    QStringList m_lines;
};
