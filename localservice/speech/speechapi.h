#pragma once

#include "localservice/accounts/accounts.h"
#include "localservice/base/jsonbody.h"
#include "localservice/speech/recognizer.h"
#include "localservice/speech/synthesizer.h"
#include "localservice/speech/tasks.h"
#include "localservice/storage/credentials.h"
#include "localservice/storage/storage.h"

#include <QSemaphore>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace localservice {

/// What the operations on speech need; everything outlives them.
struct SpeechServices
{
    Recognizer &recognizer;
    Synthesizer &synthesizer;
    Storage &storage;
    Credentials &credentials;
    Tasks &tasks;
    Accounts &accounts;
};

/// The operations on speech. Each takes the body of its request, and the value of "Authorization"
/// if it wants a token, and returns the "data" of its reply or throws a Refusal. May be used by
/// several threads.
class SpeechApi
{
public:
    /// The set-up of the operations.
    struct Settings
    {
        std::string origin;                           ///< Begins the addresses that are given out.
        int port = 0;                                 ///< Of the service.
        std::optional<std::int64_t> developmentToken; ///< Accepted without a sign-in.
        std::chrono::seconds resultLifetime{};        ///< Of audio that tasks have made.
        std::chrono::seconds credentialLifetime{};    ///< Of upload credentials.
    };

    SpeechApi(const SpeechServices &services, const Settings &settings);

    /// Recognises or speaks at once, or begins a task for it.
    nlohmann::json process(const std::string &authorization, const std::string &body);

    /// Speaks a short text for whoever asks.
    nlohmann::json freeProcess(const std::string &body);

    /// Tells how far a task has come.
    nlohmann::json taskResult(const std::string &authorization, const std::string &body);

    /// Gives out a credential for uploads to whoever asks.
    nlohmann::json uploadCredential();

private:
    struct Request; // of a synthesis

    void checkToken(const std::string &authorization) const;
    std::filesystem::path recordingOf(const JsonBody &body) const;
    Request synthesisOf(const JsonBody &body, std::size_t longestText) const;
    std::string synthesize(const Request &request);

    nlohmann::json recognizeNow(const JsonBody &body);
    nlohmann::json recognizeLater(const JsonBody &body);
    nlohmann::json speakNow(const JsonBody &body, std::size_t longestText);
    nlohmann::json speakLater(const JsonBody &body);

    SpeechServices m_services;
    Settings m_settings;
    // Seats for clients that wait for an answer, be it their turn or not: more of them would keep
    // others from being served.
    QSemaphore m_recognitions{8};
    QSemaphore m_syntheses{16};
};

} // namespace localservice
