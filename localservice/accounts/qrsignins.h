#pragma once

#include <chrono>
#include <ctime>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace localservice {

/// How far a sign-in by QR code has come.
enum class QrSignInState {
    Waiting,   ///< Somebody may confirm it.
    Confirmed, ///< It has been; whoever polls will hear of it.
    Used,      ///< Whoever polls has heard of it.
    Expired,
    Unknown, ///< Or expired long ago.
};

/// A sign-in by QR code as it is told to those who take part in it. None of the three secrets
/// can be worked out from another; whoever has the picture can read the page's off it.
struct QrSignIn
{
    std::string pollSecret;    ///< Of the application that asks.
    std::string pictureSecret; ///< In the address of the picture.
    std::string pageSecret;    ///< In the address that the picture shows.
    std::time_t expires = 0;   ///< Seconds since the epoch.
};

/// The sign-ins by QR code that are going on. They live in memory: none survives the process. May
/// be used by several threads.
class QrSignIns
{
public:
    static constexpr std::size_t most = 100; ///< That are waiting or confirmed.

    explicit QrSignIns(std::chrono::seconds lifetime);

    /// Begins one; Refusal if there are too many.
    QrSignIn begin();

    /// The page that a picture shows; nothing unless somebody may still confirm there.
    std::optional<std::string> pageOf(const std::string &pictureSecret);

    /// The state and, unless it is unknown, when the code expires.
    QrSignInState state(const std::string &pageSecret, std::time_t *expires = nullptr);

    /// Confirms it if it is waiting; returns the state from before.
    QrSignInState confirm(const std::string &pageSecret);

    /// The state for who polls. Confirmed is returned once; it is used from then on.
    QrSignInState collect(const std::string &pollSecret);

    /// Makes what was collected Confirmed again: it could not be told.
    void giveBack(const std::string &pollSecret);

    /// Forgets what expired some time ago.
    void sweep();

private:
    struct Entry
    {
        QrSignIn told;
        QrSignInState state = QrSignInState::Waiting;
        // Not affected by changes of the clock, unlike the time that is told.
        std::chrono::steady_clock::time_point expiration;
    };

    static QrSignInState stateOf(const Entry &entry);
    Entry *find(std::string QrSignIn::*secret, const std::string &value);

    const std::chrono::seconds m_lifetime;
    std::mutex m_mutex;
    std::vector<Entry> m_entries; // guarded by m_mutex
};

} // namespace localservice
