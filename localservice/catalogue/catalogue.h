#pragma once

#include "localservice/catalogue/filecache.h"
#include "localservice/speech/synthesizer.h"

#include <nlohmann/json.hpp>

#include <string>

namespace localservice {

/// What the service has to offer: voices and background music, and the recordings and pictures
/// that belong to them. May be used by several threads.
class Catalogue
{
public:
    /// @p synthesizer outlives this. @p origin, such as "https://localhost:8443", begins the
    /// addresses that are given out.
    Catalogue(Synthesizer &synthesizer, const std::string &origin);

    nlohmann::json voices() const;
    nlohmann::json music() const;

    /// The bytes of the file at the path of an address; Refusal if there is none.
    std::string file(const std::string &path);

    /// Whether @p path is one at which files of the catalogue are.
    static bool isResponsible(const std::string &path);

    /// The address of the stock picture of a user.
    std::string userPicture(std::int64_t user) const;

private:
    Synthesizer &m_synthesizer;
    std::string m_origin;
    FileCache m_files;
};

} // namespace localservice
