#include "commandline/authority.h"
#include "commandline/commandline.h"
#include "commandline/commandtable.h"
#include "commands/command.h"
#include "commands/ending.h"
#include "commands/localprogram.h"
#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/proxies.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"
#include "network/vonetwork.h"
#include "terminal/console.h"
#include "terminal/exitstatus.h"
#include "terminal/failures.h"
#include "terminal/interrupt.h"
#include "terminal/progress.h"
#include "terminal/terminal.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <algorithm>
#include <cstdlib>

namespace {

// Qt replaces what it cannot read in an argument. The name of a file would be that of another.
bool isText(const char *argument)
{
    return QString::fromLocal8Bit(argument).toLocal8Bit() == argument;
}

int refuse(const Options &options, const QString &problem, ExitStatus status)
{
    Failures::tell(problem, status, options.json);
    return status;
}

int inform(const Options &options, const QString &information)
{
    if (Console::print(information))
        return Success;
    return Console::hasLostReader() ? Unread : refuse(options, Console::printingFailed(), Failure);
}

// What the user of this program can do next.
void setHints()
{
    using Kind = Reason::Kind;
    const QString waysIn = QStringLiteral(": vospeak login --qr, or vospeak login --sms NUMBER");
    if (LocalProgram::isAsked())
        Reason::setHint(Kind::Unreachable, QStringLiteral("; is vo-localservice running?"));
    Reason::setHint(Kind::Tls, QStringLiteral("; use --ca"));
    Reason::setHint(Kind::Proxy, QStringLiteral(" (see --proxy)"));
    Reason::setHint(Kind::SignIn, waysIn);
    Reason::setHint(Kind::TooLong, QStringLiteral(": use --long"));
    Reason::setHint(Kind::TimedOut, QStringLiteral(" (see --timeout)"));
}

// Whether the user can go on later with what ended with @p status.
bool isLeft(int status)
{
    return status == NoNetwork || status == Interrupted || status == Terminated;
}

int carryOut(const Options &options)
{
    const FailureReasons reasons;
    HostKit kit(QStringLiteral("vospeak"));
    if (options.token)
        kit.tokens()->setToken(*options.token);
    if (const Reason reason = kit.tokens()->problem();
        CommandTable::needsToken(options) && !reason.isNone()) {
        Failures::tell(reason, options.json);
        return exitStatus(reason.kind);
    }

    // With --verbose the log goes to the same terminal and would run into the progress line.
    Progress progress(!options.verbose && !options.quiet);
    const std::unique_ptr<Command> command = options.command->make(options, {&kit, &progress});
    Ending ending;
    QObject::connect(command.get(), &Command::ended, &ending, &Ending::end);
    QObject::connect(command.get(), &Command::failed, &ending, &Ending::fail);
    const Interrupt interrupt;
    QObject::connect(&interrupt, &Interrupt::interrupted, &ending, &Ending::end);

    QMetaObject::invokeMethod(command.get(), &Command::start, Qt::QueuedConnection);
    const int status = QCoreApplication::exec();
    progress.clear();
    if (!ending.reason().isNone())
        Failures::tell(ending.reason(), options.json);
    if (isLeft(status) && !command->wayOn().isEmpty())
        progress.tell(command->wayOn());
    return status;
}

// Trusts the authority that the user names, if any. Returns why that is impossible.
QString trustProblem(const Options &options)
{
    if (QString problem = Authority::problem(options); !problem.isEmpty())
        return problem;
    const QString authority = Authority::of(options);
    return authority.isEmpty() ? QString() : Trust::add(authority);
}

// Everything that can be wrong before the service is asked. Empty: nothing is.
QString problemBefore(Options &options)
{
    const CommandRow &command = *options.command;
    if (command.prepare) {
        if (QString problem = command.prepare(options); !problem.isEmpty())
            return problem;
    }
    if (command.needs == Needs::Nothing)
        return {};
    if (QString problem = trustProblem(options); !problem.isEmpty())
        return problem;
    return Proxies::use(options.proxy, options.address);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vospeak"));
    QCoreApplication::setApplicationVersion(VoNetwork::GetAppVersion());

    Console::setUpStreams();
    if (!std::all_of(argv, argv + argc, isText))
        return refuse({}, QStringLiteral("an argument is no text in the encoding of the locale"),
                      WrongUse);
    const CommandLine commandLine(QCoreApplication::arguments());
    Options options = commandLine.options();
    if (!commandLine.problem().isEmpty())
        return refuse(options, commandLine.problem(), WrongUse);
    if (const QString information = commandLine.information(); !information.isEmpty())
        return inform(options, information);

    Console::setUpLog(options.verbose);
    Terminal::setColour(options.colour);
    setHints();
    if (const QString problem = problemBefore(options); !problem.isEmpty())
        return refuse(options, problem, WrongUse);
    const int status = carryOut(options);
    Console::endLog();
    // The destructor of the application waits for name lookups, which cannot be cancelled.
    if (status == Interrupted || status == Terminated)
        std::_Exit(status);
    return status;
}
