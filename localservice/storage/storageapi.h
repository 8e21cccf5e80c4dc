#pragma once

#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// Putting objects into the storage and getting them back. Every failure is a Refusal. May be used
/// by several threads.
class StorageApi
{
public:
    /// Both outlive this; @p origin begins the addresses that are given out.
    StorageApi(Storage &storage, const Credentials &credentials, const std::string &origin);

    /// Whether @p path is one that the storage answers for.
    static bool isResponsible(const std::string &path);

    /// Stores @p bytes; returns the "data" of the reply.
    nlohmann::json put(const std::string &path, const std::string &token, const std::string &bytes);

    /// An object, to be read.
    OpenObject get(const std::string &path, const std::string &token) const;

private:
    ObjectName permitted(const std::string &path, const std::string &token, Access access) const;

    Storage &m_storage;
    const Credentials &m_credentials;
    std::string m_origin;
};

} // namespace localservice
