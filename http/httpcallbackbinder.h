#pragma once

class HttpResponse;
struct HttpRequestFields;

/// Attaches the callback table of a request to the signals of its response.
namespace HttpCallbackBinder {

/// Connects every entry of @p request to every signal of its kind that it fits. An entry that fits
/// none is reported with a warning and otherwise ignored.
void attach(HttpResponse *response, const HttpRequestFields &request);

} // namespace HttpCallbackBinder
