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
    Confirmed, ///< Somebody has; who polls has not heard of it yet.
    Used,      ///< Who polls has heard of the confirmation.
    Declined,  ///< Somebody has refused it.
    Expired,   ///< Nobody confirmed it, or who polls did not ask, in time.
    Unknown,   ///< There is none with that secret, or it expired some minutes ago.
};

/// A sign-in by QR code as it is told to those who take part in it. None of the three secrets,
/// each a randomId(), can be worked out from another.
struct QrSignIn
{
    std::string pollSecret;    ///< Of the application that asks for it.
    std::string pictureSecret; ///< In the address of the picture.
    std::string pageSecret;    ///< In the address of the page, which the picture shows.
    std::time_t expires = 0;   ///< Seconds since the epoch.
};

/// A sign-in by QR code as its page shows it.
struct ShownSignIn
{
    QrSignInState state = QrSignInState::Unknown;
    std::string application;      ///< As begin() was given it.
    std::time_t expires = 0;      ///< Seconds since the epoch.
    std::chrono::seconds left{0}; ///< Until it expires, rounded up.
};

/// The sign-ins by QR code that are going on. They live in memory: none survives the process. May
/// be used by several threads.
class QrSignIns
{
public:
    static constexpr std::size_t most = 100; ///< Those that are waiting or confirmed.

    /// Each may be confirmed for @p lifetime.
    explicit QrSignIns(std::chrono::seconds lifetime);

    /// Begins one for an application, whose name may be empty; Refusal if there are too many.
    QrSignIn begin(const std::string &application);

    /// The page secret of a picture; nothing unless somebody may still confirm there.
    std::optional<std::string> pageOf(const std::string &pictureSecret);

    /// What is known of a sign-in.
    ShownSignIn show(const std::string &pageSecret);

    /// Makes a sign-in that is waiting Confirmed or Declined; returns the state from before.
    QrSignInState decide(const std::string &pageSecret, QrSignInState decision);

    /// The state for who polls. Confirmed is returned once; the sign-in is used from then on.
    QrSignInState collect(const std::string &pollSecret);

    /// Forgets what expired some minutes ago.
    void sweep();

private:
    struct Entry
    {
        QrSignIn told;
        std::string application;
        QrSignInState state = QrSignInState::Waiting;
        // Changes of the clock do not affect it, unlike the time that is told.
        std::chrono::steady_clock::time_point expiration;
    };

    static QrSignInState stateOf(const Entry &entry);
    template <typename Condition>
    void forget(Condition condition);
    Entry *find(std::string QrSignIn::*secret, const std::string &value);

    const std::chrono::seconds m_lifetime;
    std::mutex m_mutex;
    std::vector<Entry> m_entries; // guarded by m_mutex
};

} // namespace localservice
