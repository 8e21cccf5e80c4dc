#pragma once

#include "command.h"
#include "uploader.h"

/// The common part of short and long recognition: the recording is uploaded, unless the user gives
/// its address, and the recognised text is printed.
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

    /// Prints the recognised text as the result.
    void finishWith(const QString &text);

private:
    QString m_recording; ///< A file or an address.
    Uploader m_uploader;
};
