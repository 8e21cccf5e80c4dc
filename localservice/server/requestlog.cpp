#include "localservice/server/requestlog.h"

#include "localservice/base/console.h"

#include <QDateTime>

namespace localservice {

namespace {

constexpr std::size_t longestText = 200;

// A client must not be able to write lines of its own, or to a terminal's controls.
std::string printable(const std::string &text)
{
    std::string result = text.empty() ? "-" : text.substr(0, longestText);
    for (char &c : result) {
        if (c <= ' ' || c > '~')
            c = '?';
    }
    return result;
}

// Who has the address of a sign-in page or of its picture can sign in, and who has that of a
// recording can have it recognised.
std::string withoutSecrets(const std::string &path)
{
    for (const char *folder : {"/signin", "/storage"}) {
        const std::size_t found = path.find(folder);
        if (found == std::string::npos)
            continue;
        const std::size_t secret = path.find('/', found + 1);
        if (secret != std::string::npos)
            return path.substr(0, secret) + "/*";
    }
    return path;
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
    const std::string path = withoutSecrets(request.target.substr(0, request.target.find('?')));
    const std::string line = QDateTime::currentDateTimeUtc().toString(Qt::ISODate).toStdString()
                             + ' ' + printable(request.method) + ' ' + printable(path) + ' '
                             + printable(notes.feature) + ' ' + std::to_string(response.status)
                             + ' ' + std::to_string(static_cast<int>(notes.code)) + ' '
                             + std::to_string(duration.count()) + " ms";
    log(line);
}

} // namespace localservice
