// Fuzzes how a host reads a WAV file. The input is the file.

#include "hostkit/wavfile.h"
#include "input.h"
#include "qthost.h"

namespace {

bool isCutShort(const QtHost &host, const std::string &bytes)
{
    return WavFile::isCutShort(QString::fromStdString(host.folder().write("f", bytes).string()));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    const std::string bytes = Input(data, size).rest();
    const bool isRiff = bytes.compare(0, 4, "RIFF") == 0;
    const bool isShort = isCutShort(host, bytes);
    require(!isShort || isRiff || bytes.size() < 8, "only recordings can be cut short");
    if (!isShort)
        require(!isCutShort(host, bytes + '\0'), "what is whole stays whole when more follows");
    else if (bytes.size() > 8)
        require(isCutShort(host, bytes.substr(0, bytes.size() - 1)),
                "what is cut shorter still is cut short");
    return 0;
}
