#include "app/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace pulsebar {

namespace {

/// A signal handler may do next to nothing; writing to a pipe is allowed.
std::array<int, 2> signalPipe{-1, -1};

constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

extern "C" void writeToPipe(int /*number*/)
{
    const int savedError = errno;
    const char byte = 0;
    // A full pipe holds enough requests already.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedError;
}

bool openPipe()
{
    if (::pipe(signalPipe.data()) != 0)
        return false;
    for (const int end : signalPipe) {
        ::fcntl(end, F_SETFD, FD_CLOEXEC);
        ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

void setHandlers(void (*handler)(int))
{
    struct sigaction action
    {
    };
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals)
        ::sigaction(number, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (!openPipe())
        return;
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readPipe(); });
    setHandlers(writeToPipe);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    setHandlers(SIG_DFL);
    m_notifier.reset();
    for (int &end : signalPipe) {
        ::close(end);
        end = -1;
    }
}

void TerminationSignals::readPipe()
{
    std::array<char, 16> bytes{};
    while (::read(signalPipe[0], bytes.data(), bytes.size()) > 0) {
    }
    Q_EMIT terminationRequested();
}

} // namespace pulsebar
