#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>

namespace localservice {

/// The file that says what there is to upgrade to. Its owner edits it while the service runs.
class UpgradeFile
{
public:
    /// Writes @p file if there is none; std::runtime_error if that fails.
    explicit UpgradeFile(std::filesystem::path file);

    /// The "data" of the reply, as the file has it now; a Refusal, and a line on standard error, if
    /// it is missing, broken or of other types. May be called by several threads.
    nlohmann::json read() const;

private:
    std::filesystem::path m_file;
};

} // namespace localservice
