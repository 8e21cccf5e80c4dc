#include "commandline/commandtable.h"

#include "commandline/options.h"
#include "commandline/optiontable.h"
#include "commands/catalogue.h"
#include "commands/doctor.h"
#include "commands/fetch.h"
#include "commands/recognize.h"
#include "commands/say.h"
#include "commands/start.h"
#include "commands/task.h"
#include "signin/login.h"
#include "signin/signout.h"
#include "signin/whoami.h"

#include <QString>
#include <QStringList>

#include <algorithm>

namespace {

constexpr int anyNumber = 1000;

template <typename Kind>
std::unique_ptr<Command> make(const Options &options, const Tools &tools)
{
    return std::make_unique<Kind>(options, tools);
}

const char sayDetails[] =
    "Without TEXT or -f it comes from standard input. Texts of more than 1000\n"
    "characters are tasks by themselves; 20000 are the most.\n";

const char recognizeDetails[] =
    "FILE is WAV or anything else that libsndfile reads (FLAC, Ogg, MP3); with - it\n"
    "comes from standard input.\n"
    "Recordings of more than 60 seconds are tasks by themselves; an hour is the most.\n"
    "The ADDRESS of a recording begins with https:// and must be one that the\n"
    "service can read. Of several recordings each text stands behind its name; where\n"
    "one fails the others go on, and the status is that of the first failure.\n";

const char fetchDetails[] =
    "It writes into FILE.part, which becomes FILE when it is complete and stays when\n"
    "it is not. Without -o the file has the last name in the ADDRESS, which begins\n"
    "with https:// or http://. --resume goes on with FILE.part and takes it that the\n"
    "server still has the same file; where the server cannot go on, it begins anew.\n";

const char taskDetails[] =
    "Waits for a long recording to be recognised, and prints the text, or, with -o,\n"
    "for a long text to be spoken. The ID is shown when a task is left with Ctrl-C.\n";

const char loginDetails[] =
    "It keeps a session, in session.json of the user's configuration folder and\n"
    "readable by the user only; say and recognize use it and renew its token.\n\n"
    "With --sms the code that the phone received is read from standard input. With\n"
    "--qr the code is drawn on standard error, black on white on a terminal;\n"
    "elsewhere it has no colours and can be scanned where the background is light.\n"
    "The path of its picture is shown too.\n";

const char logoutDetails[] =
    "Removes the session; its tokens stay valid at the service until they run out.\n";

const char voicesMembers[] = "voices: [name, voice, type, category, scene, avatar, sampleUrl,\n"
                             "shortSynthesis, longSynthesis]";

const char updateMembers[] = "status (0 newest, 1 newer there, 2 newer needed), currentVersion,\n"
                             "version, changes: [line], url";

const char signInMembers[] = "userId, nickname, pictureUrl, tokenExpires, sessionExpires";

const char startDetails[] =
    "If no authority is named yet, that of the service is written into vospeak.conf,\n"
    "and every vospeak of this user trusts it. The codes and pages with which users\n"
    "sign in are shown here.\n";

const char helpDetails[] = "vospeak help options tells what goes with every command.\n";

} // namespace

const QVector<CommandRow> &CommandTable::rows()
{
    static const QVector<CommandRow> table{
        {"say", "[TEXT]", 0, 1, "Speaks a text.",
         "file output play voice rate speed pitch volume format anonymous long token json",
         Needs::TokenUnlessAnonymous, Say::read, Say::prepare, make<Say>, "file, bytes",
         sayDetails},
        {"recognize", "[FILE|ADDRESS...]", 0, anyNumber, "Recognises what is said in recordings.",
         "record output long token json", Needs::Token, Recognize::read, Recognize::prepare,
         make<Recognize>, "text; of several recordings an object each, with file",
         recognizeDetails},
        {"task", "ID", 1, 1, "Takes up a task again that is left at the service.",
         "output status token json", Needs::Token, Task::read, Task::prepare, make<Task>,
         "text, or file and bytes; with --status: done, and text if it is", taskDetails},
        {"voices", "[VOICE]", 0, 1, "Lists the voices, or plays one.", "play json", Needs::Server,
         VoiceList::read, VoiceList::prepare, make<VoiceList>, voicesMembers, ""},
        {"music", nullptr, 0, 0, "Lists the tracks of background music.", "json", Needs::Server,
         nullptr, nullptr, make<MusicList>, "music: [name, url]", ""},
        {"fetch", "ADDRESS", 1, 1, "Downloads a file.", "output resume json", Needs::Server,
         Fetch::read, Fetch::prepare, make<Fetch>, "file, bytes", fetchDetails},
        {"update", nullptr, 0, 0, "Says whether there is a newer version.", "json", Needs::Server,
         nullptr, nullptr, make<UpdateCheck>, updateMembers, ""},
        {"login", nullptr, 0, 0, "Signs in.", "qr sms open json", Needs::Server, Login::read,
         nullptr, Login::make, signInMembers, loginDetails},
        {"logout", nullptr, 0, 0, "Signs out.", "", Needs::Nothing, nullptr, nullptr, make<SignOut>,
         nullptr, logoutDetails},
        {"whoami", nullptr, 0, 0, "Says who is signed in, and until when.", "json", Needs::Nothing,
         nullptr, nullptr, make<WhoAmI>, "userId, nickname, tokenExpires, sessionExpires", ""},
        {"doctor", nullptr, 0, 0, "Says what is missing, and what to do about it.", "json",
         Needs::Server, nullptr, nullptr, make<Doctor>, "checks: [check, ok, text]", ""},
        {"start", nullptr, 0, 0, "Runs the service of this machine, until Ctrl-C.", "",
         Needs::Nothing, nullptr, Start::prepare, make<Start>, nullptr, startDetails},
        {"help", "[COMMAND]", 0, 1, "Tells how a command is used.", "", Needs::Nothing, nullptr,
         nullptr, nullptr, nullptr, helpDetails},
    };
    return table;
}

const CommandRow *CommandTable::find(const QString &name)
{
    const QVector<CommandRow> &all = rows();
    const auto row = std::find_if(all.begin(), all.end(), [&name](const CommandRow &row) {
        return name == QLatin1String(row.name);
    });
    return row == all.end() ? nullptr : &*row;
}

QVector<const OptionRow *> CommandTable::options(const CommandRow &command)
{
    QVector<const OptionRow *> found;
    const QStringList names =
        QString::fromLatin1(command.options).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &name : names) {
        const OptionRow *row =
            OptionTable::find(QLatin1String(name.toLatin1()), QLatin1String(command.name));
        Q_ASSERT_X(row, command.name, "an option of this command is in no row");
        found.append(row);
    }
    return found;
}

bool CommandTable::needsToken(const Options &options)
{
    const Needs needs = options.command->needs;
    return needs == Needs::Token
           || (needs == Needs::TokenUnlessAnonymous && !options.speech.isAnonymous);
}
