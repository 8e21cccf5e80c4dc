#pragma once

#include <filesystem>

namespace localservice {

/// Keeps @p folder, which is made if it is missing, for this process until that ends, however it
/// ends. std::runtime_error if another process has it or if it cannot be locked.
void lockFolder(const std::filesystem::path &folder);

} // namespace localservice
