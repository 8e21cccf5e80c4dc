#pragma once

#include <QMetaType>
#include <QString>

/// Why something failed, told to the user in one line.
struct Reason
{
    /// What hosts tell apart.
    enum class Kind {
        None,        ///< Nothing failed.
        Unreachable, ///< Nobody answers at the address of the service.
        Network,     ///< Another server does not answer, or a connection broke.
        Tls,         ///< The server is not trusted, or does not speak TLS.
        Proxy,       ///< The proxy on the way refuses.
        Refused,     ///< The service, or another server, said no.
        BadAnswer,   ///< An answer came and cannot be used.
        SignIn,      ///< Nobody is signed in, or no longer.
        TooLong,     ///< Too long for one answer; the long form takes it.
        Unusable,    ///< What the user gave cannot be used in any form.
        File,        ///< A file of this machine cannot be read or written.
        Expired,     ///< A code was not confirmed in time.
        Cancelled,   ///< The host has cancelled the job.
        TimedOut,    ///< It took longer than the host allows.
    };

    /// The value of @p code where the service takes an access token no longer.
    static constexpr int unauthorized = 401;

    Kind kind = Kind::None; ///< Kind::None: there is nothing to tell.
    QString text;           ///< What went wrong, without what to do next.
    int code = 0;           ///< The service's own code of a refusal; 0: it gave none.

    /// Whether nothing failed.
    bool isNone() const { return kind == Kind::None; }

    /// The line for the user: the text, and what the host says that can be done about this kind.
    QString line() const;

    /// What the user of this host can do about failures of @p kind, as it stands behind the text:
    /// "; use --ca". Empty by default. To be called before the first job is started.
    static void setHint(Kind kind, const QString &hint);
};

Q_DECLARE_METATYPE(Reason)
