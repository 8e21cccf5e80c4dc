#pragma once

class HttpRequest;
class HttpResponse;

/// The one place where a request becomes network traffic.
namespace HttpDispatch {

/// Sends a private copy of @p request from its client's thread. The reply is served by
/// @p response, which becomes its child, or by a new response when that is null. Returns that
/// response; null with a critical message when nothing was sent.
HttpResponse *dispatch(const HttpRequest &request, HttpResponse *response);

} // namespace HttpDispatch
