#pragma once

class QString;
struct HttpRequestFields;

/// The texts that the log level HttpLogLevel::Dumps prints of a request and of its response. They
/// hold headers and request bodies in full, credentials included.
namespace HttpDump {

/// A request as it was described; it need not have been sent.
QString request(const HttpRequestFields &fields);

/// A request that was sent, with the status and headers of its reply; @c fields.reply is not null.
QString response(const HttpRequestFields &fields);

} // namespace HttpDump
