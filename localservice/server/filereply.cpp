#include "localservice/server/filereply.h"

#include "localservice/base/refusal.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace localservice {

namespace {

constexpr std::size_t pieceSize = 64UL * 1024; // bytes that are read and sent at a time
constexpr std::string_view unit = "bytes=";

// A part of a file, in bytes. Without a length there is nothing of it in the file.
struct ByteRange
{
    std::size_t begin;
    std::size_t length;
};

// strtoull() returns the largest number there is for a larger one.
std::size_t number(const std::string &digits) { return std::strtoull(digits.c_str(), nullptr, 10); }

// The part that the value of a Range header asks for; nothing if the header is to be ignored.
std::optional<ByteRange> requestedRange(const std::string &header, std::size_t size)
{
    const std::size_t dash = header.find('-');
    if (header.rfind(unit, 0) != 0 || dash == std::string::npos)
        return std::nullopt;
    const std::string first = header.substr(unit.size(), dash - unit.size());
    const std::string last = header.substr(dash + 1);
    if ((first + last).find_first_not_of("0123456789") != std::string::npos
        || (first + last).empty())
        return std::nullopt;
    if (first.empty()) {
        const std::size_t length = std::min(number(last), size);
        return ByteRange{size - length, length};
    }
    const std::size_t begin = number(first);
    if (!last.empty() && number(last) < begin)
        return std::nullopt;
    if (begin >= size)
        return ByteRange{size, 0};
    const std::size_t rest = size - begin;
    return ByteRange{begin, last.empty() ? rest : std::min(rest - 1, number(last) - begin) + 1};
}

// An If-Range names a version of the file, and no reply has said which one it was of.
ByteRange partOf(const OpenObject &file, const httplib::Request &request,
                 httplib::Response &response)
{
    std::optional<ByteRange> range;
    if (request.method == "GET" && !request.has_header("If-Range"))
        range = requestedRange(request.get_header_value("Range"), file.size);
    if (!range)
        return {0, file.size};
    const std::string size = std::to_string(file.size);
    if (range->length == 0) {
        response.set_header("Content-Range", "bytes */" + size);
        throw Refusal(Code::OutOfRange, "the file has no such part");
    }
    const std::size_t last = range->begin + range->length - 1;
    response.status = 206;
    response.set_header("Content-Range", "bytes " + std::to_string(range->begin) + '-'
                                             + std::to_string(last) + '/' + size);
    return *range;
}

const char *typeOf(const std::string &path)
{
    const std::string suffix = path.substr(std::min(path.size(), path.rfind('.')));
    return suffix == ".wav"   ? "audio/wav"
           : suffix == ".png" ? "image/png"
           : suffix == ".svg" ? "image/svg+xml"
                              : "application/octet-stream";
}

} // namespace

void setFile(const httplib::Request &request, httplib::Response &response, const std::string &path,
             const OpenObject &file)
{
    const ByteRange part = partOf(file, request, response);
    if (part.length == 0) { // the library takes no provider of nothing
        response.set_content(std::string(), typeOf(path));
        return;
    }
    response.set_content_provider(
        part.length, typeOf(path),
        [=](std::size_t offset, std::size_t length, httplib::DataSink &sink) {
            std::string piece(std::min(length, pieceSize), '\0');
            file.stream->seekg(static_cast<std::streamoff>(part.begin + offset));
            return file.stream->read(piece.data(), static_cast<std::streamsize>(piece.size()))
                   && sink.write(piece.data(), piece.size());
        });
}

} // namespace localservice
