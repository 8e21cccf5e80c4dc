#include "recognition.h"

#include "console.h"
#include "hostkit/inputfile.h"
#include "options.h"

Recognition::Recognition(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_recording(options.recording)
    , m_uploader(tools.service, tools.progress)
{
    connect(&m_uploader, &Uploader::uploaded, this, &Recognition::recognize);
    connect(&m_uploader, &Uploader::failed, this, &Command::failed);
}

Recognition::~Recognition() = default;

// The scheme is put into small letters: a service may compare it letter by letter.
void Recognition::start()
{
    if (InputFile::isAddress(m_recording))
        recognize(QLatin1String("https") + m_recording.mid(m_recording.indexOf(QLatin1Char(':'))));
    else
        m_uploader.upload(m_recording);
}

void Recognition::finishWith(const QString &text)
{
    finish(Console::onOneLine(text) + QLatin1Char('\n'), {{QStringLiteral("text"), text}});
}
