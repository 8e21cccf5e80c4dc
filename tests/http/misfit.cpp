// A callback that does not fit, whose error message must say what would and where it is bound.
#include "http/httprequest.h"

void misfit(HttpRequest &request)
{
    request.onFinished([](int) {});
}
