#pragma once

#include <memory>

struct Work;

/// One way to do the works. It keeps its connections from one call to the next, except for what is
/// of Kind::Start.
class Contender
{
public:
    virtual ~Contender() = default;

    /// Does the work @p count times and returns after the last; ends the process when it fails.
    virtual void perform(const Work &work, int count) = 0;
};

/// The network access manager by hand: it sends by sendCustomRequest(), as the toolkit does, or by
/// get(); replies buffer as much as comes, or 64 or 256 KiB; or it speaks HTTP/2, for which it asks
/// at the port after the work's.
std::unique_ptr<Contender> makeBare();
std::unique_ptr<Contender> makeBareGet();
std::unique_ptr<Contender> makeBounded64();
std::unique_ptr<Contender> makeBounded256();
std::unique_ptr<Contender> makeHttp2();

/// The toolkit. A body and an error reach slots.
std::unique_ptr<Contender> makeToolkit();

/// The service client, and the access manager with what the service client does written by hand:
/// for Kind::Voices, Kind::Speech and Kind::Start.
std::unique_ptr<Contender> makeService();
std::unique_ptr<Contender> makeByHand();

/// libcurl: one transfer after the other, and many at a time over as many connections as Qt makes.
std::unique_ptr<Contender> makeCurlEasy();
std::unique_ptr<Contender> makeCurlMulti();
