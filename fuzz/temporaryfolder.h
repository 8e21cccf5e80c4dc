#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A folder of a fuzzer's own. It is removed with its contents.
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string();
        if (!::mkdtemp(name.data()))
            std::abort();
        m_path = name;
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::filesystem::path &path() const { return m_path; }

    /// Replaces the file @p name; returns its path.
    std::filesystem::path write(const std::string &name, const std::string &bytes) const
    {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return m_path / name;
    }

private:
    std::filesystem::path m_path;
};
