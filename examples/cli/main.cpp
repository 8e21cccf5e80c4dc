#include "command.h"
#include "commandline.h"
#include "console.h"
#include "ending.h"
#include "exitstatus.h"
#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/inputfile.h"
#include "hostkit/outputfile.h"
#include "hostkit/proxies.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"
#include "interrupt.h"
#include "network/vonetwork.h"
#include "progress.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <algorithm>
#include <cstdlib>

namespace {

QString downloadProblem(const OutputFile &file, bool resume)
{
    const QString problem = file.problem();
    return problem.isEmpty() ? file.partProblem(resume) : problem;
}

// Files are checked before the service is asked for anything.
QString fileProblem(const Options &options)
{
    if (options.action == Options::Action::Say)
        return OutputFile(options.output).problem();
    if (options.action == Options::Action::Fetch)
        return downloadProblem(OutputFile(options.output), options.resume);
    if (options.action == Options::Action::Recognize && !InputFile::isAddress(options.recording))
        return InputFile::problem(options.recording);
    return {};
}

// Qt replaces what it cannot read in an argument. The name of a file would be that of another.
bool isText(const char *argument)
{
    return QString::fromLocal8Bit(argument).toLocal8Bit() == argument;
}

int refuse(const QString &problem, ExitStatus status)
{
    Console::complain(problem);
    return status;
}

// What the user of this program can do next.
void setHints()
{
    using Kind = Reason::Kind;
    const QString waysIn = QStringLiteral(": vospeak login --qr, or vospeak login --sms NUMBER");
    Reason::setHint(Kind::Unreachable, QStringLiteral("; is vo-localservice running?"));
    Reason::setHint(Kind::Tls, QStringLiteral("; use --ca"));
    Reason::setHint(Kind::Proxy, QStringLiteral(" (see --proxy)"));
    Reason::setHint(Kind::SignIn, waysIn);
    Reason::setHint(Kind::TooLong, QStringLiteral(": use --long"));
}

bool needsToken(const Options &options)
{
    return options.action == Options::Action::Recognize
           || (options.action == Options::Action::Say && !options.anonymous);
}

int carryOut(const Options &options)
{
    const FailureReasons reasons;
    HostKit kit(QStringLiteral("vospeak"));
    if (options.token)
        kit.tokens()->setToken(*options.token);
    if (const Reason reason = kit.tokens()->problem(); needsToken(options) && !reason.isNone())
        return refuse(reason.line(), Failure);

    // With --verbose the log goes to the same terminal and would run into the progress line.
    Progress progress(!options.verbose);
    const std::unique_ptr<Command> command = Command::make(options, {&kit, &progress});
    Ending ending;
    QObject::connect(command.get(), &Command::succeeded, &ending, [&] { ending.end(Success); });
    QObject::connect(command.get(), &Command::failed, &ending, &Ending::fail);
    const Interrupt interrupt;
    QObject::connect(&interrupt, &Interrupt::interrupted, &ending, &Ending::end);

    QMetaObject::invokeMethod(command.get(), &Command::start, Qt::QueuedConnection);
    const int status = QCoreApplication::exec();
    progress.clear();
    if (!ending.reason().isNone())
        Console::complain(ending.reason().line());
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vospeak"));
    QCoreApplication::setApplicationVersion(VoNetwork::GetAppVersion());

    Console::setUpStreams();
    if (!std::all_of(argv, argv + argc, isText))
        return refuse(QStringLiteral("an argument is no text in the encoding of the locale"),
                      WrongUse);
    const CommandLine commandLine(QCoreApplication::arguments());
    if (!commandLine.problem().isEmpty())
        return refuse(commandLine.problem(), WrongUse);
    if (const QString information = commandLine.information(); !information.isEmpty())
        return Console::print(information) ? Success : refuse(Console::printingFailed(), Failure);

    const Options &options = commandLine.options();
    Console::setUpLog(options.verbose);
    if (const QString problem = fileProblem(options); !problem.isEmpty())
        return refuse(problem, WrongUse);
    if (!options.authority.isEmpty()) {
        if (const QString problem = Trust::add(options.authority); !problem.isEmpty())
            return refuse(problem, WrongUse);
    }
    if (options.action != Options::Action::Logout) { // a logout asks no server
        if (const QString problem = Proxies::use(options.proxy, options.address);
            !problem.isEmpty())
            return refuse(problem, WrongUse);
    }
    setHints();
    const int status = carryOut(options);
    Console::endLog();
    // The destructor of the application waits for name lookups, which cannot be cancelled.
    if (status == Interrupted || status == Terminated)
        std::_Exit(status);
    return status;
}
