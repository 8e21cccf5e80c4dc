// The headers of an answer after a redirect. Up to an empty line those of the redirecting answer;
// the rest are the answer's own.

#include "http/replyheaders.h"
#include "fakereply.h"
#include "input.h"

#include <algorithm>

namespace {

constexpr int movedPermanently = 301;
constexpr int ok = 200;

// What Qt has thrown away cannot be brought back: an empty value that is set to an empty value
// again, a Location that is set to the one it was.
bool isAmbiguous(const FakeReply &redirecting, const FakeReply &own)
{
    const auto &headers = redirecting.rawHeaderPairs();
    return own.hasRawHeader("Location")
           || std::any_of(headers.cbegin(), headers.cend(),
                          [](const auto &header) { return header.second.isEmpty(); });
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    FakeReply reply;
    reply.readHeaders(&input);
    FakeReply own;
    const auto before = reply.rawHeaderPairs();
    Input rest(input);
    own.readHeaders(&rest);
    if (isAmbiguous(reply, own))
        return 0;

    ReplyHeaders headers;
    reply.setStatus(movedPermanently);
    headers.onMetaDataChanged(reply);
    require(headers.of(reply) == before, "without a redirect the headers are Qt's");
    headers.onRedirected();
    headers.onMetaDataChanged(reply); // Qt reports the redirecting answer once more
    reply.setStatus(ok);
    for (const auto &header : own.rawHeaderPairs())
        reply.joinHeader(header.first, header.second);
    require(headers.of(reply) == own.rawHeaderPairs(), "the headers are those of the last answer");
    return 0;
}
