#pragma once

class HttpResponse;
struct HttpRequestFields;

/// Attaches the callback table of a request to the signals of its response.
namespace HttpCallbackBinder {

/// Connects every entry of @p request to every signal of its kind that it fits. An entry that fits
/// none is skipped with a warning, an entry whose receiver was watched and is gone without one.
void attach(HttpResponse *response, const HttpRequestFields &request);

/// Replaces the receivers in @p request, which are plain pointers, by guarded ones: the request
/// can then be attached again when some of them are gone. All receivers must be alive.
void watchReceivers(HttpRequestFields &request);

} // namespace HttpCallbackBinder
