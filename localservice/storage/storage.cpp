#include "localservice/storage/storage.h"

#include "localservice/base/secrets.h"

#include <fstream>
#include <regex>
#include <stdexcept>
#include <system_error>

namespace localservice {

namespace {

constexpr const char *prefix = "/storage/speech/";

void removeOlderThan(const std::filesystem::path &folder, std::chrono::seconds lifetime)
{
    const auto now = std::filesystem::file_time_type::clock::now();
    // The next sweep makes up for errors: an upload may come in between here.
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
    static const std::regex form(
        "/storage/speech/((?:uploads|results)/[0-9a-f]{32})/([A-Za-z0-9._-]{1,128})");
    std::smatch parts;
    if (!std::regex_match(path, parts, form) || parts[2] == "." || parts[2] == "..")
        return std::nullopt;
    return ObjectName{parts[1], parts[2]};
}

std::string Storage::pathOf(const ObjectName &object)
{
    return prefix + object.directory + "/" + object.name;
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
    std::filesystem::path path = m_objects / object.directory / object.name;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    return path;
}

void Storage::sweep(std::chrono::seconds uploadsLifetime, std::chrono::seconds resultsLifetime)
{
    removeOlderThan(m_objects / uploads, uploadsLifetime);
    removeOlderThan(m_objects / results, resultsLifetime);
    removeOlderThan(m_unfinished, uploadsLifetime); // of a process that was killed
}

} // namespace localservice
