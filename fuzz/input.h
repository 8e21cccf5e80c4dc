#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Executes a fuzzer once with these bytes. Each fuzzer defines it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// The bytes of one execution, taken piece by piece.
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_bytes(reinterpret_cast<const char *>(data), size)
    {
    }

    /// The next byte; 0 when there is none left.
    unsigned byte()
    {
        return m_position < m_bytes.size() ? static_cast<unsigned char>(m_bytes[m_position++]) : 0;
    }

    /// The rest of the line; its line feed is taken too.
    std::string line()
    {
        const std::size_t end = std::min(m_bytes.size(), m_bytes.find('\n', m_position));
        std::string text = m_bytes.substr(m_position, end - m_position);
        m_position = std::min(m_bytes.size(), end + 1);
        return text;
    }

    /// The bytes that are left.
    std::string rest()
    {
        const std::size_t begin = m_position;
        m_position = m_bytes.size();
        return m_bytes.substr(begin);
    }

    bool isAtEnd() const { return m_position == m_bytes.size(); }

private:
    std::string m_bytes;
    std::size_t m_position = 0;
};

/// Ends the program with a finding unless @p holds; @p what names the broken promise.
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}
