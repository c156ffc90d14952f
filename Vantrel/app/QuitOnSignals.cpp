#include "Vantrel/app/QuitOnSignals.h"

#include "Vantrel/limits/CloseOnExecPipe.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace vantrel {
namespace {

constexpr std::array quitSignals{SIGTERM, SIGINT, SIGHUP};

// A handler may do almost nothing: it writes one byte, and the event loop, woken by it, quits.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables): shared with the handler
std::array<int, 2> signalPipe{-1, -1};

void noteSignal(int /*signal*/)
{
    const int savedErrno = errno;
    const char byte = 1;
    // A full pipe already holds a request, so a failed write loses nothing.
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
    errno = savedErrno;
}

} // namespace

QuitOnSignals::QuitOnSignals(QObject* parent) : QObject(parent)
{
    if (!limits::openCloseOnExecPipe(signalPipe, true)) {
        qWarning("vantrel: no pipe for termination requests; they end the program at once");
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    connect(notifier_.get(), &QSocketNotifier::activated, this, [] {
        std::array<char, 16> drained{};
        while (::read(signalPipe[0], drained.data(), drained.size()) > 0) {
        }
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND); // SA_RESETHAND is the sign bit
    for (const int signal : quitSignals) {
        ::sigaction(signal, &action, nullptr);
    }
}

QuitOnSignals::~QuitOnSignals()
{
    if (!notifier_) {
        return;
    }
    for (const int signal : quitSignals) {
        static_cast<void>(::signal(signal, SIG_DFL));
    }
    notifier_.reset();
    ::close(signalPipe[0]);
    ::close(signalPipe[1]);
    signalPipe = {-1, -1};
}

} // namespace vantrel
