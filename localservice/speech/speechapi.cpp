#include "localservice/speech/speechapi.h"

#include "localservice/base/refusal.h"
#include "localservice/base/secrets.h"
#include "localservice/server/requestlog.h"
#include "localservice/speech/speechtext.h"

#include <algorithm>
#include <array>

namespace localservice {

namespace {

constexpr const char *longRecognition = "recordingRecognition";
constexpr const char *longSynthesis = "longVoiceSynthesis";
constexpr const char *noSuchFeature = "this operation does not have that feature";

constexpr int longestShortRecording = 60; // seconds
constexpr int longestRecording = 3600;    // seconds

constexpr std::size_t longestFreeText = 300; // characters
constexpr std::size_t longestShortText = 1000;
constexpr std::size_t longestText = 20000;

constexpr std::array<int, 8> sampleRates{8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000};
constexpr int furthestRate = 500;

constexpr int waveHead = 44; // bytes

// Clients put nothing between the sentences: each but the first begins with a blank.
nlohmann::json sentencesJson(const std::vector<Sentence> &sentences)
{
    nlohmann::json result = nlohmann::json::array();
    for (const Sentence &sentence : sentences)
        result.push_back({{"Text", (result.empty() ? "" : " ") + sentence.text},
                          {"BeginTime", sentence.beginTime},
                          {"EndTime", sentence.endTime}});
    return result;
}

JsonBody parsed(const std::string &bytes)
{
    JsonBody body(bytes);
    requestNotes().feature = body.text("feature");
    return body;
}

void require(bool isUsable, const std::string &message)
{
    if (!isUsable)
        throw Refusal(Code::UnusableValue, message);
}

// Takes one of the seats for as long as the releaser lives.
QSemaphoreReleaser taken(QSemaphore &seats)
{
    if (!seats.tryAcquire())
        throw Refusal(Code::Busy, "too many requests of this kind at once, try again later");
    return QSemaphoreReleaser(seats);
}

// The seconds of speech that fit into an object of the storage.
int longestSpeech(int sampleRate)
{
    return (static_cast<int>(Storage::largestObject) - waveHead) / (2 * sampleRate);
}

} // namespace

struct SpeechApi::Request
{
    std::string text;
    Speaking speaking;
    bool hasHeader = true; ///< WAV, not bare samples.
};

SpeechApi::SpeechApi(const SpeechServices &services, const Settings &settings)
    : m_services(services)
    , m_settings(settings)
{
}

nlohmann::json SpeechApi::process(const std::string &authorization, const std::string &body)
{
    checkToken(authorization);
    const JsonBody request = parsed(body);
    const std::string feature = request.text("feature");
    if (feature == "inWord")
        return recognizeNow(request);
    if (feature == longRecognition)
        return recognizeLater(request);
    if (feature == "voiceSynthesis")
        return speakNow(request, longestShortText);
    if (feature == longSynthesis)
        return speakLater(request);
    throw Refusal(Code::UnusableValue, noSuchFeature);
}

nlohmann::json SpeechApi::freeProcess(const std::string &body)
{
    const JsonBody request = parsed(body);
    require(request.text("feature") == "voiceSynthesis", noSuchFeature);
    return speakNow(request, longestFreeText);
}

nlohmann::json SpeechApi::taskResult(const std::string &authorization, const std::string &body)
{
    checkToken(authorization);
    const JsonBody request = parsed(body);
    const std::string feature = request.text("feature");
    require(feature == longRecognition || feature == longSynthesis, noSuchFeature);
    const std::string id = request.text("task_id");
    nlohmann::json data = m_services.tasks.report(id, feature);
    data["task_id"] = id;
    data["request_id"] = randomId();
    return data;
}

nlohmann::json SpeechApi::uploadCredential()
{
    const Credential credential = m_services.credentials.issue(
        Storage::uploads, Access::ReadAndWrite, m_settings.credentialLifetime);
    // The storage looks at the token alone; the keys are for clients that expect some.
    return {{"AccessKeyId", randomId()},
            {"AccessKeySecret", randomId()},
            {"endpoint", m_settings.origin + "/storage"},
            {"bucketName", "speech"},
            {"dir", credential.directory},
            {"SecurityToken", credential.token},
            {"bucketRegion", "local"},
            {"Expiration", credential.expiration.toString(Qt::ISODate).toStdString()}};
}

void SpeechApi::checkToken(const std::string &authorization) const
{
    const std::string scheme = "Bearer ";
    const bool isBearer = authorization.rfind(scheme, 0) == 0;
    const std::string token = isBearer ? authorization.substr(scheme.size()) : std::string();
    const auto &bypass = m_settings.developmentToken;
    const bool isDevelopment = bypass && token == std::to_string(*bypass);
    if (!isDevelopment && !m_services.accounts.accepts(token))
        throw Refusal(Code::Unauthorized, "the access token is missing or not valid");
}

// A client can have nothing read that is not in the storage, be it a file or another host.
std::filesystem::path SpeechApi::recordingOf(const JsonBody &body) const
{
    const std::string link = body.text("file_link");
    const std::string address = link.substr(0, link.find('?'));
    const std::string byNumber = "https://127.0.0.1:" + std::to_string(m_settings.port);
    std::optional<ObjectName> object;
    for (const std::string &origin : {m_settings.origin, byNumber})
        if (address.rfind(origin, 0) == 0)
            object = Storage::parsePath(address.substr(origin.size()));
    require(object.has_value(), "\"file_link\" is not an address in this service's storage");
    if (const auto file = m_services.storage.file(*object))
        return *file;
    throw Refusal(Code::NotFound, "there is no recording at \"file_link\"");
}

SpeechApi::Request SpeechApi::synthesisOf(const JsonBody &body, std::size_t longest) const
{
    Request request;
    const std::string text = body.text("text");
    if (characterCount(text) > longest)
        throw Refusal(Code::TooLarge,
                      "\"text\" has more than " + std::to_string(longest) + " characters");
    request.text = speakableText(text);
    require(!request.text.empty(), "there is nothing to say in \"text\"");

    Speaking &speaking = request.speaking;
    speaking.voice = body.text("voice", speaking.voice);
    require(m_services.synthesizer.hasVoice(speaking.voice),
            "\"voice\" has to be rms, kal16, slt or awb");
    const std::string format = body.text("format", "wav");
    require(format == "wav" || format == "pcm", "\"format\" has to be wav or pcm");
    request.hasHeader = format == "wav";
    speaking.sampleRate =
        body.integer("sample_rate", speaking.sampleRate, sampleRates.front(), sampleRates.back());
    require(std::find(sampleRates.begin(), sampleRates.end(), speaking.sampleRate)
                != sampleRates.end(),
            "\"sample_rate\" is not one of the usual rates");
    speaking.volume = body.integer("volume", speaking.volume, 0, 100);
    speaking.speechRate =
        body.integer("speech_rate", speaking.speechRate, -furthestRate, furthestRate);
    speaking.pitchRate =
        body.integer("pitch_rate", speaking.pitchRate, -furthestRate, furthestRate);
    return request;
}

std::string SpeechApi::synthesize(const Request &request)
{
    const Audio audio = m_services.synthesizer.speak(request.text, request.speaking,
                                                     longestSpeech(request.speaking.sampleRate));
    return request.hasHeader ? encodeWave(audio) : encodePcm(audio);
}

nlohmann::json SpeechApi::recognizeNow(const JsonBody &body)
{
    const std::filesystem::path file = recordingOf(body);
    const QSemaphoreReleaser seat = taken(m_recognitions);
    std::string text;
    for (const Sentence &sentence :
         m_services.recognizer.recognize(readWave(file, Channels::MixDown, longestShortRecording)))
        text += (text.empty() ? "" : " ") + sentence.text;
    return {{"text", text}};
}

nlohmann::json SpeechApi::recognizeLater(const JsonBody &body)
{
    const Channels channels =
        body.flag("first_channel_only", false) ? Channels::FirstOnly : Channels::MixDown;
    const std::filesystem::path file = recordingOf(body);
    checkWave(file, longestRecording);
    return {{"task_id", m_services.tasks.add(longRecognition, [this, file, channels] {
                 const auto sentences =
                     m_services.recognizer.recognize(readWave(file, channels, longestRecording));
                 return nlohmann::json{{"result", {{"Sentences", sentencesJson(sentences)}}}};
             })}};
}

nlohmann::json SpeechApi::speakNow(const JsonBody &body, std::size_t longest)
{
    const Request request = synthesisOf(body, longest);
    const QSemaphoreReleaser seat = taken(m_syntheses);
    return {{"audio", QByteArray::fromStdString(synthesize(request)).toBase64().toStdString()}};
}

nlohmann::json SpeechApi::speakLater(const JsonBody &body)
{
    const Request request = synthesisOf(body, longestText);
    return {{"task_id", m_services.tasks.add(longSynthesis, [this, request] {
                 const std::string bytes = synthesize(request);
                 const Credential credential = m_services.credentials.issue(
                     Storage::results, Access::Read, m_settings.resultLifetime);
                 const ObjectName object{credential.directory,
                                         request.hasHeader ? "speech.wav" : "speech.pcm"};
                 m_services.storage.write(object, bytes);
                 return nlohmann::json{
                     {"audio_address", m_settings.origin + Storage::pathOf(object)
                                           + "?security-token=" + credential.token}};
             })}};
}

} // namespace localservice
