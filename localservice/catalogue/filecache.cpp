#include "localservice/catalogue/filecache.h"

#include "localservice/base/refusal.h"

namespace localservice {

void FileCache::add(const std::string &path, Make make) { m_files[path].make = std::move(make); }

std::string FileCache::get(const std::string &path)
{
    const auto found = m_files.find(path);
    if (found == m_files.end())
        throw Refusal(Code::NotFound, "there is no such file");
    File &file = found->second;
    const std::lock_guard<std::mutex> lock(file.mutex);
    if (!file.isMade)
        file.bytes = file.make();
    file.isMade = true;
    return file.bytes;
}

} // namespace localservice
