#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace localservice {

/// A part of a file, in bytes.
struct ByteRange
{
    std::size_t begin = 0;
    std::size_t length = 0; ///< 0: there is nothing of it in the file.
};

/// The part of a file of @p size bytes that the value of a Range header asks for. Nothing if it is
/// to be ignored: when it is none, is not understood or asks for several parts.
std::optional<ByteRange> requestedRange(const std::string &header, std::size_t size);

} // namespace localservice
