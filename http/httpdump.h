#pragma once

class QString;
struct HttpRequestFields;

/// The texts that diagnostics print of a request and of its response. They hold headers and bodies
/// in full, credentials included.
namespace HttpDump {

/// A request as it was described, whether or not it was sent.
QString request(const HttpRequestFields &fields);

/// A request that was sent, with the status and headers of its reply; @c fields.reply is not null.
QString response(const HttpRequestFields &fields);

} // namespace HttpDump
