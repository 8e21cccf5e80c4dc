#pragma once

#include <QObject>
#include <QString>
#include <QVector>

class TokenKeeper;
class VoNetworkIntf;

/// What the jobs of a host share: connections to the service, and the tokens of the user who is
/// signed in. Belongs to the thread of the jobs and outlives them.
class HostKit : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HostKit)

public:
    /// @p label is sent with what is to be spoken or recognised; the service may count by it.
    explicit HostKit(const QString &label, QObject *parent = nullptr);
    ~HostKit() override;

    /// As the constructor got it.
    QString label() const;

    /// Owned by this.
    TokenKeeper *tokens() const;

    /// The address of the service, with which the library was built.
    static QString serviceAddress();

private:
    friend class ServiceLease;

    VoNetworkIntf *take();
    void giveBack(VoNetworkIntf *service);
    void releaseAll();

    QString m_label;
    TokenKeeper *m_tokens;
    QVector<VoNetworkIntf *> m_idle; ///< Owned, and asked for nothing now.
};
