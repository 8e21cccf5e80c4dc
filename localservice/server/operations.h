#pragma once

#include "localservice/accounts/signinapi.h"
#include "localservice/catalogue/catalogue.h"
#include "localservice/catalogue/upgradefile.h"
#include "localservice/speech/speechapi.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace localservice {

/// The table of operations: which one a method and a path stand for. May be used by several
/// threads.
class Operations
{
public:
    /// All outlive this.
    Operations(SpeechApi &speech, SignInApi &signIn, Catalogue &catalogue, UpgradeFile &upgrade);

    /// Whether @p path begins with one of the three prefixes that operations have.
    static bool isResponsible(const std::string &path);

    /// Calls the operation; returns the "data" of the reply, or nothing if there is no such
    /// operation. Throws what the operation throws. @p path has no query.
    std::optional<nlohmann::json> call(const std::string &path, const httplib::Request &request,
                                       const std::string &body) const;

private:
    struct Question;
    using Call = std::function<nlohmann::json(const Question &question)>;
    struct Operation
    {
        std::string method;
        std::string path;
        Call call;
    };

    std::vector<Operation> m_operations;
};

} // namespace localservice
