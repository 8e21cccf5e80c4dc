#pragma once

#include "command.h"
#include "uploader.h"

/// What short and long recognition have in common: the recording gets an address first, and the
/// text is the result in the end.
class Recognition : public Command
{
    Q_OBJECT
    Q_DISABLE_COPY(Recognition)

public:
    Recognition(const Options &options, const Tools &tools);
    ~Recognition() override;

    void start() override;

protected:
    /// Asks the service to recognise the recording at @p address.
    virtual void recognize(const QString &address) = 0;

    void finishWith(const QString &text);

private:
    QString m_recording;
    Uploader m_uploader;
};
