#pragma once

#include "tests/support/scriptedserver.h"

#include <QByteArray>
#include <QList>
#include <QNetworkReply>

#include <functional>
#include <memory>

/// One way in which a service or the way to it can fail.
struct Fault
{
    const char *name;

    /// Whether the request arrives at a server.
    bool asked;

    /// The error that Qt reports; NoError: it hands a body over.
    QNetworkReply::NetworkError error;

    /// Makes the server, which would answer with @p body and is not started yet; null: no server.
    std::function<std::unique_ptr<ScriptedServer>(const QByteArray &body)> server;

    /// The body that Qt hands over in place of @p body, where there is no error.
    std::function<QByteArray(const QByteArray &body)> received = nullptr;
};

/// Every fault once; the one called "silence" never ends by itself.
QList<Fault> faults();
