#pragma once

#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// The storage for clients, who need the security token of a directory. May be used by several
/// threads.
class StorageApi
{
public:
    /// Both outlive this; @p origin, such as "https://localhost:8443", begins the addresses that
    /// are given out.
    StorageApi(Storage &storage, const Credentials &credentials, const std::string &origin);

    /// Whether @p path is under the folder of the storage.
    static bool isResponsible(const std::string &path);

    /// Stores @p bytes and returns the "data" of the reply. Refusal if @p token does not allow
    /// that; std::runtime_error if the disk does not.
    nlohmann::json put(const std::string &path, const std::string &token, const std::string &bytes);

    /// Opens an object; Refusal if @p token does not allow that or there is no such object.
    OpenObject get(const std::string &path, const std::string &token) const;

private:
    ObjectName permitted(const std::string &path, const std::string &token, Access access) const;

    Storage &m_storage;
    const Credentials &m_credentials;
    std::string m_origin;
};

} // namespace localservice
