#pragma once

class HttpResponse;
struct HttpRequestFields;

/// Attaches the callback table of a request to the signals of its response.
namespace HttpCallbackBinder {

/// Connects every entry of @p request to every signal of its kind that it fits. An entry that fits
/// none is reported with a warning and otherwise ignored; one whose receiver was watched and is
/// gone is ignored.
void attach(HttpResponse *response, const HttpRequestFields &request);

/// Replaces the receivers in @p request, which are plain pointers, by guarded ones, so that the
/// request can be attached again when some of them are gone.
void watchReceivers(HttpRequestFields &request);

} // namespace HttpCallbackBinder
