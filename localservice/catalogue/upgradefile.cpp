#include "localservice/catalogue/upgradefile.h"

#include "localservice/base/console.h"
#include "localservice/base/refusal.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace localservice {

namespace {

constexpr const char *initialContents = R"({
  "upgradeStatus": 0,
  "versionInfo": {
    "version_code": ")" LOCALSERVICE_NEWEST_VERSION R"(",
    "external_update_log": [
      "Signs in by QR code and by SMS code.",
      "Lists the voices and the background music of the service."
    ],
    "url": "https://downloads.example/)" LOCALSERVICE_NEWEST_VERSION R"("
  }
}
)";

constexpr int mostUrgent = 2; // the largest value of "upgradeStatus"

// Copies the members that clients read; throws if one is missing or has another type than they
// read.
nlohmann::json checked(const nlohmann::json &object)
{
    const nlohmann::json &status = object.at("upgradeStatus");
    if (!status.is_number_integer() || status < 0 || status > mostUrgent)
        throw std::runtime_error("\"upgradeStatus\" is not 0, 1 or 2");
    const nlohmann::json &version = object.at("versionInfo");
    return {{"upgradeStatus", status},
            {"versionInfo",
             {{"version_code", version.at("version_code").get<std::string>()},
              {"external_update_log",
               version.at("external_update_log").get<std::vector<std::string>>()},
              {"url", version.at("url").get<std::string>()}}}};
}

} // namespace

UpgradeFile::UpgradeFile(std::filesystem::path file)
    : m_file(std::move(file))
{
    if (std::filesystem::exists(m_file))
        return;
    std::ofstream stream(m_file, std::ios::binary);
    stream << initialContents;
    stream.close();
    if (!stream)
        throw std::runtime_error("cannot write \"" + m_file.string() + "\"");
}

nlohmann::json UpgradeFile::read() const
{
    try {
        std::ifstream stream(m_file, std::ios::binary);
        return checked(nlohmann::json::parse(stream));
    } catch (const std::exception &error) {
        warn("\"" + m_file.string() + "\" cannot be used: " + error.what());
        throw Refusal(Code::Failed, "the service does not know of any version");
    }
}

} // namespace localservice
