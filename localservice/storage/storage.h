#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <istream>
#include <memory>
#include <optional>
#include <string>

namespace localservice {

/// The place of an object.
struct ObjectName
{
    std::string directory; ///< "uploads/ID" or "results/ID", where ID is a randomId().
    std::string name;      ///< 1 to 128 of A-Z a-z 0-9 . _ -, except "." and "..".
};

/// An object that can be read whatever becomes of its file.
struct OpenObject
{
    std::shared_ptr<std::istream> stream; ///< Has no error.
    std::size_t size = 0;                 ///< Bytes.
};

/// Objects in files. May be used by several threads.
class Storage
{
public:
    static constexpr std::size_t largestObject = 64UL * 1024 * 1024; ///< Bytes.
    static constexpr const char *uploads = "uploads"; ///< The parent of what clients put there.
    static constexpr const char *results = "results"; ///< The parent of what tasks put there.

    /// Makes the folders in @p folder; std::filesystem::filesystem_error if that fails.
    explicit Storage(std::filesystem::path folder);

    /// Whether @p path is under the folder of the storage.
    static bool isResponsible(const std::string &path) { return path.rfind("/storage/", 0) == 0; }

    /// The object that the path of an address means, taken as it is written: nothing is unescaped.
    /// Nothing if it cannot be the path of any object.
    static std::optional<ObjectName> parsePath(const std::string &path);

    /// The opposite of parsePath().
    static std::string pathOf(const ObjectName &object);

    /// Stores @p bytes, as a whole or not at all, in place of an older object of that name.
    /// std::runtime_error if that fails.
    void write(const ObjectName &object, const std::string &bytes);

    /// Opens an object at its end; nothing if there is no such object.
    std::optional<OpenObject> open(const ObjectName &object) const;

    /// The file of an object, which stays until it is swept; nothing if there is no such object.
    std::optional<std::filesystem::path> file(const ObjectName &object) const;

    /// Removes the directories that were last changed longer ago than given for their parent.
    void sweep(std::chrono::seconds uploadsLifetime, std::chrono::seconds resultsLifetime);

private:
    std::filesystem::path m_objects;
    std::filesystem::path m_unfinished;
};

} // namespace localservice
