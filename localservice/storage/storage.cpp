#include "localservice/storage/storage.h"

#include "localservice/base/secrets.h"

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace localservice {

namespace {

constexpr std::string_view prefix = "/storage/speech/";
constexpr std::size_t longestName = 128;

bool isObjectName(const std::string &name)
{
    return !name.empty() && name.size() <= longestName && name != "." && name != ".."
           && name.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                     "0123456789._-")
                  == std::string::npos;
}

void removeOlderThan(const std::filesystem::path &folder, std::chrono::seconds lifetime)
{
    const auto now = std::filesystem::file_time_type::clock::now();
    // Errors are left to the next time: another sweep, or an upload, may have come in between.
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(folder, error)) {
        const auto changed = entry.last_write_time(error);
        if (!error && now - changed > lifetime)
            std::filesystem::remove_all(entry.path(), error);
    }
}

} // namespace

Storage::Storage(std::filesystem::path folder)
    : m_objects(folder / "objects")
    , m_unfinished(folder / "unfinished")
{
    std::filesystem::create_directories(m_objects / uploads);
    std::filesystem::create_directories(m_objects / results);
    std::filesystem::create_directories(m_unfinished);
}

std::optional<ObjectName> Storage::parsePath(const std::string &path)
{
    if (path.rfind(prefix, 0) != 0)
        return std::nullopt;
    std::istringstream stream(path.substr(prefix.size()));
    std::string parent;
    std::string id;
    std::string name;
    std::getline(stream, parent, '/');
    std::getline(stream, id, '/');
    std::getline(stream, name, '\0');
    if ((parent != uploads && parent != results) || !isRandomId(id) || !isObjectName(name))
        return std::nullopt;
    ObjectName object{parent + "/" + id, name};
    // Equal only if nothing was overlooked, such as what follows a NUL.
    return pathOf(object) == path ? std::optional<ObjectName>(object) : std::nullopt;
}

std::string Storage::pathOf(const ObjectName &object)
{
    return std::string(prefix) + object.directory + "/" + object.name;
}

void Storage::write(const ObjectName &object, const std::string &bytes)
{
    const std::filesystem::path unfinished = m_unfinished / randomId();
    std::ofstream stream(unfinished, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    std::error_code error;
    if (stream) {
        std::filesystem::create_directory(m_objects / object.directory, error);
        std::filesystem::rename(unfinished, m_objects / object.directory / object.name, error);
        if (!error)
            return;
    }
    std::filesystem::remove(unfinished, error);
    throw std::runtime_error("an object cannot be stored");
}

std::optional<OpenObject> Storage::open(const ObjectName &object) const
{
    const auto stream = std::make_shared<std::ifstream>(m_objects / object.directory / object.name,
                                                        std::ios::binary | std::ios::ate);
    if (!*stream)
        return std::nullopt;
    return OpenObject{stream, static_cast<std::size_t>(stream->tellg())};
}

std::optional<std::filesystem::path> Storage::file(const ObjectName &object) const
{
    const std::filesystem::path path = m_objects / object.directory / object.name;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    return path;
}

void Storage::sweep(std::chrono::seconds uploadsLifetime, std::chrono::seconds resultsLifetime)
{
    removeOlderThan(m_objects / uploads, uploadsLifetime);
    removeOlderThan(m_objects / results, resultsLifetime);
    removeOlderThan(m_unfinished,
                    uploadsLifetime); // left behind by a process that was killed
}

} // namespace localservice
