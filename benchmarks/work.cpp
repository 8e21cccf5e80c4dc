#include "benchmarks/work.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>

// The ports and paths that the script has nginx serve.
#define CLEAR "http://127.0.0.1:8080/"
#define TLS "https://127.0.0.1:8443/"
#define SERVICE "https://localhost:8443/convert/public/index.php/v1/asr/"

namespace {

constexpr qint64 KiB = 1024;
constexpr qint64 MiB = 1024 * KiB;

// name, kind, address, bytes of the answer, bytes posted, requests in flight
constexpr Work works[] = {
    {"get-200", Kind::Memory, CLEAR "200", 200},
    {"get-200-x64", Kind::Memory, CLEAR "200", 200, 0, 64},
    {"get-200-tls", Kind::Memory, TLS "200", 200},
    {"get-200-tls-x6", Kind::Memory, TLS "200", 200, 0, 6},
    {"get-200-tls-x64", Kind::Memory, TLS "200", 200, 0, 64},
    {"post-300-tls", Kind::Memory, TLS "answer", 200, 300},
    {"get-10k-tls", Kind::Memory, TLS "10k", 10 * KiB},
    {"get-1m", Kind::Memory, CLEAR "1m", MiB},
    {"download-64m-tls", Kind::File, TLS "64m", 64 * MiB},
    {"download-1g", Kind::File, CLEAR "1g", 1024 * MiB},
    {"voices", Kind::Voices, SERVICE "getVoice", 0},
    {"speech", Kind::Speech, SERVICE "freeProcess", 0},
    {"start", Kind::Start, SERVICE "getBackgroundMusic", 0},
};

} // namespace

const Work *workNamed(const char *name)
{
    const auto found = std::find_if(std::begin(works), std::end(works), [name](const Work &work) {
        return qstrcmp(work.name, name) == 0;
    });
    return found == std::end(works) ? nullptr : found;
}

const Work *warmUpFor(const Work &work)
{
    if (work.kind != Kind::Memory && work.kind != Kind::File)
        return nullptr;
    return workNamed(QByteArray(work.address).startsWith("https") ? "get-200-tls" : "get-200");
}
