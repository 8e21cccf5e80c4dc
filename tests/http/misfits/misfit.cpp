// One callback that fits, and several that do not and whose error message must say what would.
#include "http/httprequest.h"

#include <QObject>

struct Receiver : QObject
{
    void number(int);
    void text(QString);
};

struct NoObject
{
    void text(QString);
};

void misfit(HttpRequest &request, Receiver *receiver, NoObject *noObject)
{
    Q_UNUSED(receiver)
    Q_UNUSED(noObject)
#if MISFIT == 0
    request.onFinished(receiver, &Receiver::text);
#elif MISFIT == 1
    request.onFinished([](int) {});
#elif MISFIT == 2
    request.onFinished([](QByteArray, int) {});
#elif MISFIT == 3
    request.onFinished([](auto) {});
#elif MISFIT == 4
    request.onFinished(receiver, &Receiver::number);
#elif MISFIT == 5
    request.onFinished(42);
#elif MISFIT == 6
    request.onUploadProgress([](QByteArray) {});
#elif MISFIT == 7
    request.onFinished(noObject, &NoObject::text);
#elif MISFIT == 8
    request.onError([](QString) {});
#else
#error "no such case"
#endif
}
