#pragma once

#include <QEventLoop>

class HttpResponse;
class QNetworkReply;

/// Waits for a reply in a nested event loop. A child of the reply.
class HttpBlocker : public QEventLoop
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpBlocker)

public:
    ~HttpBlocker() override;

    /// Returns when @p reply has finished, or when the application quits; on a thread that was told
    /// to quit before, only when the reply has finished. The reply and what belongs to it live
    /// until then, even if somebody has it deleted later meanwhile. It has a child of this class
    /// for as long as somebody waits for it.
    static void waitFor(QNetworkReply *reply);

    /// Waits for the reply of @p response, if it has one and its request asks for that. False when
    /// the response was deleted meanwhile.
    static bool waitIfAsked(HttpResponse *response);

private:
    explicit HttpBlocker(QNetworkReply *reply);

    void wait();
};
