#include "recognition.h"

#include "console.h"
#include "inputfile.h"
#include "options.h"
#include "progress.h"

Recognition::Recognition(const Options &options, VoNetworkIntf *service, Progress *progress)
    : m_service(service)
    , m_progress(progress)
    , m_recording(options.recording)
    , m_token(options.token)
    , m_uploader(service, progress)
{
    connect(&m_uploader, &Uploader::uploaded, this, &Recognition::recognize);
    connect(&m_uploader, &Uploader::failed, this, &Command::failed);
}

Recognition::~Recognition() = default;

void Recognition::start()
{
    if (InputFile::isAddress(m_recording))
        recognize(m_recording);
    else
        m_uploader.upload(m_recording);
}

void Recognition::finish(const QString &text)
{
    m_progress->clear(); // the terminal may be the same
    if (Console::print(text + QLatin1Char('\n')))
        Q_EMIT succeeded();
    else
        Q_EMIT failed(QStringLiteral("the text could not be written to standard output"));
}

VoNetworkIntf *Recognition::service() const { return m_service; }

Progress *Recognition::progress() const { return m_progress; }

qint64 Recognition::token() const { return m_token; }
