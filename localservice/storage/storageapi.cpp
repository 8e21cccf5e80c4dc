#include "localservice/storage/storageapi.h"

#include "localservice/base/refusal.h"

namespace localservice {

StorageApi::StorageApi(Storage &storage, const Credentials &credentials, const std::string &origin)
    : m_storage(storage)
    , m_credentials(credentials)
    , m_origin(origin)
{
}

bool StorageApi::isResponsible(const std::string &path) { return path.rfind("/storage/", 0) == 0; }

nlohmann::json StorageApi::put(const std::string &path, const std::string &token,
                               const std::string &bytes)
{
    const ObjectName object = permitted(path, token, Access::ReadAndWrite);
    m_storage.write(object, bytes);
    return {{"address", m_origin + Storage::pathOf(object)}};
}

OpenObject StorageApi::get(const std::string &path, const std::string &token) const
{
    auto object = m_storage.open(permitted(path, token, Access::Read));
    if (!object)
        throw Refusal(Code::NotFound, "there is no such object, or no longer");
    return std::move(*object);
}

// A path that cannot be an object's is refused like one without the right token, so that who has
// none learns nothing about what there is.
ObjectName StorageApi::permitted(const std::string &path, const std::string &token,
                                 Access access) const
{
    const auto object = Storage::parsePath(path);
    if (!object || !m_credentials.allows(object->directory, token, access))
        throw Refusal(Code::Forbidden, "the security token does not allow that, or no longer");
    return *object;
}

} // namespace localservice
