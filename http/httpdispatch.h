#pragma once

class HttpRequest;
class HttpResponse;

/// Hands requests to the access manager. Nothing else in the toolkit sends.
namespace HttpDispatch {

/// Sends a private copy of @p request; called on its client's thread. The reply is served by
/// @p response, which becomes its child, or by a new response when @p response is null. Returns
/// the response that serves it: at once, or after the exchange if the request blocks. Null when
/// nothing could be sent, which a critical message explains, and after a wait in which the response
/// was deleted.
HttpResponse *dispatch(const HttpRequest &request, HttpResponse *response);

} // namespace HttpDispatch
