#include "localservice/accounts/qrsignins.h"

#include "localservice/base/refusal.h"
#include "localservice/base/secrets.h"

#include <algorithm>

namespace localservice {

namespace {

// A page can say why it is of no use for so long after its end.
constexpr std::chrono::minutes memory(10);

// An application that polls hears of a confirmation in the last second of a code, too.
constexpr std::chrono::minutes timeToCollect(1);

} // namespace

QrSignIns::QrSignIns(std::chrono::seconds lifetime)
    : m_lifetime(lifetime)
{
}

QrSignIn QrSignIns::begin(const std::string &application)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_entries.size() >= most)
        forget([](const Entry &entry) {
            const QrSignInState state = stateOf(entry);
            return state != QrSignInState::Waiting && state != QrSignInState::Confirmed;
        });
    if (m_entries.size() >= most)
        throw Refusal(Code::Busy, "too many sign-ins are waiting for a confirmation");
    Entry entry;
    entry.told = {randomId(), randomId(), randomId(), std::time(nullptr) + m_lifetime.count()};
    entry.application = application;
    entry.expiration = std::chrono::steady_clock::now() + m_lifetime;
    m_entries.push_back(entry);
    return entry.told;
}

std::optional<std::string> QrSignIns::pageOf(const std::string &pictureSecret)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Entry *const entry = find(&QrSignIn::pictureSecret, pictureSecret);
    if (!entry || stateOf(*entry) != QrSignInState::Waiting)
        return std::nullopt;
    return entry->told.pageSecret;
}

ShownSignIn QrSignIns::show(const std::string &pageSecret)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const Entry *const entry = find(&QrSignIn::pageSecret, pageSecret);
    if (!entry)
        return {};
    const auto left = entry->expiration - std::chrono::steady_clock::now();
    return {stateOf(*entry), entry->application, entry->told.expires,
            std::chrono::ceil<std::chrono::seconds>(left)};
}

QrSignInState QrSignIns::decide(const std::string &pageSecret, QrSignInState decision)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Entry *const entry = find(&QrSignIn::pageSecret, pageSecret);
    const QrSignInState before = entry ? stateOf(*entry) : QrSignInState::Unknown;
    if (before == QrSignInState::Waiting) {
        entry->state = decision;
        entry->expiration =
            std::max(entry->expiration, std::chrono::steady_clock::now() + timeToCollect);
    }
    return before;
}

QrSignInState QrSignIns::collect(const std::string &pollSecret)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    Entry *const entry = find(&QrSignIn::pollSecret, pollSecret);
    const QrSignInState before = entry ? stateOf(*entry) : QrSignInState::Unknown;
    if (before == QrSignInState::Confirmed)
        entry->state = QrSignInState::Used;
    return before;
}

void QrSignIns::sweep()
{
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard<std::mutex> lock(m_mutex);
    forget([now](const Entry &entry) { return entry.expiration + memory <= now; });
}

template <typename Condition>
void QrSignIns::forget(Condition condition)
{
    m_entries.erase(std::remove_if(m_entries.begin(), m_entries.end(), condition), m_entries.end());
}

QrSignInState QrSignIns::stateOf(const Entry &entry)
{
    const bool isOver = entry.expiration <= std::chrono::steady_clock::now();
    return isOver && entry.state != QrSignInState::Used ? QrSignInState::Expired : entry.state;
}

QrSignIns::Entry *QrSignIns::find(std::string QrSignIn::*secret, const std::string &value)
{
    const auto found = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return entry.told.*secret == value;
    });
    return found == m_entries.end() ? nullptr : &*found;
}

} // namespace localservice
