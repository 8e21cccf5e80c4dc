#include "localservice/storage/credentials.h"

#include "localservice/base/refusal.h"
#include "localservice/base/secrets.h"

namespace localservice {

Credential Credentials::issue(const std::string &parent, Access access,
                              std::chrono::seconds lifetime)
{
    Credential credential{parent + "/" + randomId(), randomId(),
                          QDateTime::currentDateTimeUtc().addSecs(lifetime.count())};
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_entries[credential.directory] = {credential.token, access,
                                       std::chrono::steady_clock::now() + lifetime};
    return credential;
}

// A path that cannot be an object's is refused like one without the right token, so that who has
// none learns nothing about what there is.
ObjectName Credentials::permitted(const std::string &path, const std::string &token,
                                  Access access) const
{
    const auto object = Storage::parsePath(path);
    if (!object || !allows(object->directory, token, access))
        throw Refusal(Code::Forbidden, "the security token does not allow that, or no longer");
    return *object;
}

bool Credentials::allows(const std::string &directory, const std::string &token,
                         Access access) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_entries.find(directory);
    if (found == m_entries.end())
        return false;
    const Entry &entry = found->second;
    return entry.expiration > std::chrono::steady_clock::now()
           && (access == Access::Read || entry.access == Access::ReadAndWrite)
           && token == entry.token;
}

void Credentials::sweep()
{
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (auto i = m_entries.begin(); i != m_entries.end();)
        i = i->second.expiration <= now ? m_entries.erase(i) : std::next(i);
}

} // namespace localservice
