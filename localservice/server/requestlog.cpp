#include "localservice/server/requestlog.h"

#include "localservice/base/console.h"

#include <QDateTime>

#include <algorithm>
#include <regex>

namespace localservice {

namespace {

constexpr std::size_t longestText = 200;

// A client's text as one word: it can write no line of its own and reach no terminal's controls.
std::string printable(const std::string &text)
{
    std::string result = text.empty() ? "-" : text.substr(0, longestText);
    std::replace_if(
        result.begin(), result.end(), [](char c) { return c <= ' ' || c > '~'; }, '?');
    return result;
}

// The address of a sign-in page, or of its picture, lets its reader sign in; that of a recording
// has it recognised.
std::string withoutSecrets(const std::string &path)
{
    static const std::regex secret("(/(?:signin|storage)[^/]*)/.*");
    return std::regex_replace(path, secret, "$1/*");
}

} // namespace

RequestNotes &requestNotes()
{
    thread_local RequestNotes notes;
    return notes;
}

void logRequest(const httplib::Request &request, const httplib::Response &response)
{
    const RequestNotes &notes = requestNotes();
    const auto duration = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - notes.start);
    const std::string path = printable(request.target.substr(0, request.target.find('?')));
    const std::string line = QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString()
                             + ' ' + printable(request.method) + ' ' + withoutSecrets(path) + ' '
                             + printable(notes.feature) + ' ' + std::to_string(response.status)
                             + ' ' + std::to_string(static_cast<int>(notes.code)) + ' '
                             + std::to_string(duration.count()) + " ms";
    log(line);
}

} // namespace localservice
