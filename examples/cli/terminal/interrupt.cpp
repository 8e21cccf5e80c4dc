#include "terminal/interrupt.h"

#include "terminal/exitstatus.h"

#ifdef Q_OS_WIN

#include <QMetaObject>

#include <mutex>
#include <qt_windows.h>
#include <utility>

namespace {

Interrupt *current = nullptr;

// The handler, which runs in another thread, holds the mutex while it uses the current object. The
// destructor waits for it.
std::mutex &currentMutex()
{
    static std::mutex mutex;
    return mutex;
}

void setCurrent(Interrupt *interrupt)
{
    const std::lock_guard<std::mutex> lock(currentMutex());
    current = interrupt;
}

// The system calls this in a thread of its own. It takes the current object away, so a second
// Ctrl-C finds none, and the system's own handler ends the program.
BOOL WINAPI onControl(DWORD control)
{
    if (control != CTRL_C_EVENT && control != CTRL_BREAK_EVENT)
        return FALSE;
    const std::lock_guard<std::mutex> lock(currentMutex());
    Interrupt *interrupt = std::exchange(current, nullptr);
    if (!interrupt)
        return FALSE;
    QMetaObject::invokeMethod(
        interrupt, [interrupt] { Q_EMIT interrupt->interrupted(Interrupted); },
        Qt::QueuedConnection);
    return TRUE;
}

} // namespace

Interrupt::Interrupt()
{
    setCurrent(this);
    SetConsoleCtrlHandler(onControl, TRUE);
}

void Interrupt::leaveToSystem() { SetConsoleCtrlHandler(onControl, FALSE); }

Interrupt::~Interrupt()
{
    SetConsoleCtrlHandler(onControl, FALSE);
    setCurrent(nullptr);
}

#else

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// The pipe between the signal handler and the event loop. A handler may do next to nothing: it
// writes the signal's number into the pipe.
int readEnd = -1;
int writeEnd = -1;

void onSignal(int number)
{
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(number);
    if (write(writeEnd, &byte, 1) != 1)
        _exit(128 + number); // the event loop cannot be told
    errno = savedErrno;
}

// Handles the signal once. When it comes again, its default action ends the program.
void handle(int number)
{
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

bool openPipe()
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    readEnd = ends[0];
    writeEnd = ends[1];
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    return true;
}

} // namespace

Interrupt::Interrupt()
{
    if (!openPipe())
        return; // the signals keep their default action
    auto *notifier = new QSocketNotifier(readEnd, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        unsigned char number = 0;
        if (read(readEnd, &number, 1) == 1)
            Q_EMIT interrupted(128 + number);
    });
    handle(SIGINT);
    handle(SIGTERM);
}

void Interrupt::leaveToSystem()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    pollfd waiting = {readEnd, POLLIN, 0};
    unsigned char number = 0;
    if (poll(&waiting, 1, 0) == 1 && read(readEnd, &number, 1) == 1)
        std::raise(number);
}

Interrupt::~Interrupt()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    close(readEnd);
    close(writeEnd);
}

#endif
