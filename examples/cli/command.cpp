#include "command.h"

#include "cataloguecommands.h"
#include "console.h"
#include "fetch.h"
#include "hostkit/job.h"
#include "interrupt.h"
#include "jobprogress.h"
#include "options.h"
#include "progress.h"
#include "qrsignin.h"
#include "signout.h"
#include "smssignin.h"
#include "speechcommands.h"

#include <QJsonDocument>
#include <QVector>

namespace {

QString escaped(uint character)
{
    if (QChar::requiresSurrogates(character))
        return escaped(QChar::highSurrogate(character)) + escaped(QChar::lowSurrogate(character));
    return QStringLiteral("\\u%1").arg(character, 4, 16, QLatin1Char('0'));
}

// Every character that a terminal might obey is escaped; JSON asks for that only below the blank.
QString lineOf(const QJsonObject &document)
{
    QString line;
    const QString json = QString::fromUtf8(QJsonDocument(document).toJson(QJsonDocument::Compact));
    const QVector<uint> characters = json.toUcs4();
    for (const uint character : characters) {
        if (Console::isPlain(character))
            line += QString::fromUcs4(&character, 1);
        else
            line += escaped(character);
    }
    return line + QLatin1Char('\n');
}

} // namespace

std::unique_ptr<Command> Command::make(const Options &options, const Tools &tools)
{
    switch (options.action) {
    case Options::Action::Say:
        return std::make_unique<Say>(options, tools);
    case Options::Action::Recognize:
        return std::make_unique<Recognize>(options, tools);
    case Options::Action::Voices:
        return std::make_unique<VoiceList>(options, tools);
    case Options::Action::Music:
        return std::make_unique<MusicList>(options, tools);
    case Options::Action::Update:
        return std::make_unique<UpdateCheck>(options, tools);
    case Options::Action::Login:
        if (options.phone.isEmpty())
            return std::make_unique<QrSignIn>(options, tools);
        return std::make_unique<SmsSignIn>(options, tools);
    case Options::Action::Logout:
        return std::make_unique<SignOut>(options, tools);
    case Options::Action::Fetch:
        return std::make_unique<Fetch>(options, tools);
    }
    Q_UNREACHABLE();
}

Command::Command(const Options &options, const Tools &tools)
    : m_tools(tools)
    , m_json(options.json)
{
}

Command::~Command() = default;

HostKit *Command::kit() const { return m_tools.kit; }

Progress *Command::progress() const { return m_tools.progress; }

void Command::run(Job *job, const QString &asking)
{
    connect(job, &Job::progressed, new JobProgress(m_tools.progress, asking, job),
            &JobProgress::show);
    connect(job, &Job::failed, this, &Command::failed);
    job->start();
}

void Command::finish(const QString &text, const QJsonObject &document)
{
    m_tools.progress->clear();  // the result may go to the same terminal
    Interrupt::leaveToSystem(); // a slow reader of the result keeps this from the event loop
    if (Console::print(m_json ? lineOf(document) : text))
        Q_EMIT succeeded();
    else
        Q_EMIT failed({Reason::Kind::File, Console::printingFailed()});
}
