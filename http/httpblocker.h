#pragma once

#include <QEventLoop>

class HttpResponse;
class QNetworkReply;

/// The nested event loop in which a blocking request waits. A reply has one as its child while
/// somebody waits for it. The wait has no limit of its own: a reply without a time-out may never
/// end it.
class HttpBlocker : public QEventLoop
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpBlocker)

public:
    ~HttpBlocker() override;

    /// Runs an event loop until @p reply, which is not null and has not emitted finished() yet,
    /// does so, or until the application quits. On a thread that was told to quit before, only the
    /// reply counts. A deleteLater() of the reply takes effect after the wait. Called on the thread
    /// of the reply.
    static void waitFor(QNetworkReply *reply);

    /// Waits for the reply of @p response, if it has one and its request blocks. False when the
    /// response was deleted meanwhile. The toolkit's own; hosts have no use for it.
    static bool waitIfAsked(HttpResponse *response);

private:
    explicit HttpBlocker(QNetworkReply *reply);

    void wait();
};
