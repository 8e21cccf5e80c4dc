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

    /// Whether the request gets to somebody who claims to be the service.
    bool asked;

    /// What Qt says of it; NoError: it hands a body over.
    QNetworkReply::NetworkError error;

    /// A server that would answer with @p body and is about to be started; null: nobody listens.
    std::function<std::unique_ptr<ScriptedServer>(const QByteArray &body)> server;

    /// The body that is handed over in place of @p body, where there is no error.
    std::function<QByteArray(const QByteArray &body)> received = nullptr;
};

/// Every fault once; the one called "silence" never ends by itself.
QList<Fault> faults();
