#pragma once

#include <QEventLoop>

class QNetworkReply;

/// Waits for a reply in a nested event loop. A child of the reply.
class HttpBlocker : public QEventLoop
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpBlocker)

public:
    explicit HttpBlocker(QNetworkReply *reply);
    ~HttpBlocker() override;

    /// Returns when the reply has finished, or when the application quits. The reply and what
    /// belongs to it live until then, even if somebody has it deleted later meanwhile.
    void wait();
};
