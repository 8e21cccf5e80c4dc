// Fuzzes how the local service reads the bodies of requests. The input is what a client sends.

#include "input.h"
#include "localservice/base/refusal.h"
#include "localservice/server/requestbody.h"
#include "localservice/server/requestlog.h"

#include <optional>

using namespace localservice;

namespace {

constexpr std::size_t largest = 1000; // bytes

/// The bytes of one connection. The answer is dropped.
class Connection : public httplib::Stream
{
public:
    explicit Connection(const std::string &bytes)
        : m_bytes(bytes)
    {
    }

    bool is_readable() const override { return true; }
    bool is_writable() const override { return true; }
    ssize_t read(char *buffer, std::size_t size) override
    {
        const std::size_t count = m_bytes.copy(buffer, size, m_position);
        m_position += count;
        return static_cast<ssize_t>(count);
    }
    ssize_t write(const char *, std::size_t size) override { return static_cast<ssize_t>(size); }
    void get_remote_ip_and_port(std::string &, int &) const override {}
    void get_local_ip_and_port(std::string &, int &) const override {}
    socket_t socket() const override { return INVALID_SOCKET; }

private:
    const std::string &m_bytes;
    std::size_t m_position = 0;
};

/// The HTTP library's server, without a socket.
class Reader : public httplib::Server
{
public:
    Reader()
    {
        Post("[^]*", [this](const auto &request, auto &, const auto &reader) {
            requestNotes() = RequestNotes();
            try {
                body = readBody(request, reader, largest);
                checkBody(request);
            } catch (const Refusal &refusal) {
                require(refusal.code() == Code::Malformed || refusal.code() == Code::TooLarge,
                        "a body is refused as malformed or too large");
            }
        });
    }

    void serve(const std::string &bytes)
    {
        Connection connection(bytes);
        bool closed = false;
        body.reset();
        process_request(connection, true, closed, nullptr);
    }

    std::optional<std::string> body;

private:
    void checkBody(const httplib::Request &request) const
    {
        require(body->size() <= largest, "a body that is taken is not too large");
        const bool isPlain =
            !request.has_header("Transfer-Encoding") && !request.has_header("Content-Encoding");
        if (isPlain && request.get_header_value_count("Content-Length") == 1)
            require(body->size() == std::stoull(request.get_header_value("Content-Length")),
                    "a body is as long as announced");
        require(body->empty() || !request.is_multipart_form_data(), "forms are not taken");
    }
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Reader reader;
    reader.serve(Input(data, size).rest());
    return 0;
}
