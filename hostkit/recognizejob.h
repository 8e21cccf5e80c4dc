#pragma once

#include "hostkit/taskjob.h"

#include <QString>

/// Recognises the speech in a recording, which is a WAV file of this machine, and uploaded, or at
/// an address that begins with https:// and that the service can read.
class RecognizeJob : public TaskJob
{
    Q_OBJECT
    Q_DISABLE_COPY(RecognizeJob)

public:
    /// With Form::ByLength a recording whose length does not show is long. A job that takes up a
    /// task needs no @p recording. @p kit outlives the job.
    RecognizeJob(HostKit *kit, const QString &recording, Form form = Form::ByLength,
                 QObject *parent = nullptr);

    /// Why @p recording cannot be recognised in @p form, as far as that shows without the service;
    /// none: it can.
    static Reason problem(const QString &recording, Form form = Form::ByLength);

Q_SIGNALS:
    /// @p text is empty where nobody spoke.
    void succeeded(const QString &text);

protected:
    /// Checks the limits, and asks the service.
    void beginAnew() override;
    void askAfter(const QString &id, qint64 token) override;
    void onResult(const QString &text) override;

private:
    void upload();
    void recognize(const QString &address);
    void recognizeShort(const QString &address, qint64 token);
    void recognizeLong(const QString &address, qint64 token);

    QString m_recording;
    Form m_form;
};
