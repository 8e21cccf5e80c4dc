#include "localservice/catalogue/catalogue.h"

#include "localservice/base/refusal.h"
#include "localservice/catalogue/avatars.h"
#include "localservice/catalogue/music.h"
#include "localservice/speech/speechtext.h"

#include <array>

namespace localservice {

namespace {

constexpr const char *avatarFolder = "/speechdesk/voice_avatar/";
constexpr const char *auditionFolder = "/speechdesk/audition/";
constexpr const char *musicFolder = "/speechdesk/music/";

// The names of short and long synthesis; every voice can do both.
constexpr const char *features = "语音合成,长文本语音合成";

constexpr int longestAudition = 60; // seconds

// A voice as it is listed.
struct Description
{
    const char *voice; // as the engine names it
    const char *name;
    const char *type; // "man" or "woman"
    const char *category;
    const char *scene;
    const char *avatar; // the file of its picture, percent-encoded
};

constexpr std::array<Description, 4> descriptions{{
    {"rms", "Robert", "man", "美式英语", "Reading aloud", "%E7%94%B701.png"},
    {"slt", "Sally", "woman", "美式英语", "Reading aloud", "%E5%A5%B301.png"},
    {"awb", "Alan", "man", "英文", "Telling stories", "%E7%94%B702.png"},
    {"kal16", "Karl", "man", "美式英语", "Announcements", "%E7%94%B702.png"},
}};

std::string audition(Synthesizer &synthesizer, const Description &description)
{
    Speaking speaking;
    speaking.voice = description.voice;
    const std::string text =
        std::string("Hello, my name is ") + description.name + ". This is how I sound.";
    return encodeWave(synthesizer.speak(speakableText(text), speaking, longestAudition));
}

std::string auditionPath(const Description &description)
{
    return std::string(auditionFolder) + description.voice + ".wav";
}

} // namespace

Catalogue::Catalogue(Synthesizer &synthesizer, const std::string &origin)
    : m_synthesizer(synthesizer)
    , m_origin(origin)
{
    for (const std::string &name : avatarNames())
        m_files[avatarFolder + name].make = [name] { return drawAvatar(name); };
    for (const Tune &tune : tunes())
        m_files[musicFolder + tune.file].make = [&tune] { return encodeWave(play(tune)); };
    for (const Description &description : descriptions)
        m_files[auditionPath(description)].make = [this, &description] {
            return audition(m_synthesizer, description);
        };
}

nlohmann::json Catalogue::voices() const
{
    nlohmann::json list = nlohmann::json::array();
    for (const Description &description : descriptions)
        if (m_synthesizer.hasVoice(description.voice))
            list.push_back({{"name", description.name},
                            {"voiceParam", description.voice},
                            {"type", description.type},
                            {"avatar", m_origin + avatarFolder + description.avatar},
                            {"category", description.category},
                            {"scene", description.scene},
                            {"audition_url", m_origin + auditionPath(description)},
                            {"supportFeature", features}});
    return {{"list", list}};
}

nlohmann::json Catalogue::music() const
{
    nlohmann::json list = nlohmann::json::array();
    for (const Tune &tune : tunes())
        list.push_back({{"name", tune.name}, {"url", m_origin + musicFolder + tune.file}});
    return list;
}

std::string Catalogue::file(const std::string &path)
{
    const auto found = m_files.find(path);
    if (found == m_files.end())
        throw Refusal(Code::NotFound, "there is no such file");
    const std::lock_guard<std::mutex> lock(m_mutex);
    File &file = found->second;
    if (file.bytes.empty())
        file.bytes = file.make();
    return file.bytes;
}

bool Catalogue::isResponsible(const std::string &path)
{
    return path.rfind("/speechdesk/", 0) == 0;
}

std::string Catalogue::userPicture(std::int64_t user) const
{
    const std::vector<std::string> names = avatarNames();
    return m_origin + avatarFolder + names[static_cast<std::size_t>(user) % names.size()];
}

} // namespace localservice
