#pragma once

#include "command.h"
#include "uploader.h"

/// What short and long recognition have in common: the recording gets an address first, and the
/// text is printed in the end.
class Recognition : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognition)

public:
    Recognition(const Options &options, VoNetworkIntf *service, Progress *progress);
    ~Recognition() override;

    void start() override;

protected:
    /// Asks the service to recognise the recording at @p address.
    virtual void recognize(const QString &address) = 0;

    void finish(const QString &text);

    VoNetworkIntf *service() const;
    Progress *progress() const;
    qint64 token() const;

private:
    VoNetworkIntf *m_service;
    Progress *m_progress;
    QString m_recording;
    qint64 m_token;
    Uploader m_uploader;
};
