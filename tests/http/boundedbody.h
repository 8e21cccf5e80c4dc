#pragma once

#include "http/httprequest.h"

#include <QNetworkReply>

#include <memory>

/// Collects the body in @p body. The request fails with OperationCanceledError once that is longer
/// than @p limit bytes.
inline HttpRequest &collectAtMost(qint64 limit, const std::shared_ptr<QByteArray> &body,
                                  HttpRequest &request)
{
    return request.readBufferSize(65536).onReadyRead([limit, body](QNetworkReply *reply) {
        body->append(reply->readAll());
        if (body->size() > limit)
            reply->abort();
    });
}
