#pragma once

#include "localservice/speech/synthesizer.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace localservice {

/// The voices and the background music of the service, and the recordings and pictures that belong
/// to them. May be used by several threads.
class Catalogue
{
public:
    /// @p synthesizer outlives this. @p origin, such as "https://localhost:8443", begins the
    /// addresses that are given out.
    Catalogue(Synthesizer &synthesizer, const std::string &origin);

    /// The "data" of the replies that list voices and tracks.
    nlohmann::json voices() const;
    nlohmann::json music() const;

    /// The bytes of the file at the path of an address. It is made when it is first asked for and
    /// kept in memory from then on. Refusal if there is none; whatever making it throws is thrown
    /// on, and it is made anew the next time.
    std::string file(const std::string &path);

    /// Whether @p path is under the folder of the catalogue's files.
    static bool isResponsible(const std::string &path);

    /// The address of the stock picture that a user has.
    std::string userPicture(std::int64_t user) const;

private:
    struct File
    {
        std::function<std::string()> make; // returns its bytes
        std::string bytes;                 // empty until it was made
    };

    Synthesizer &m_synthesizer;
    std::string m_origin;
    std::mutex m_mutex;
    std::map<std::string, File> m_files; // by path; the bytes are guarded by m_mutex
};

} // namespace localservice
