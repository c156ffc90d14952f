#include "Vantrel/app/QuitOnSignals.h"

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <csignal>

namespace vantrel {
namespace {

bool handledByDefault(int signal)
{
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    return current.sa_handler == SIG_DFL;
}

// The event loop ends with this status: 0 when the request quit it, 1 when nothing did within 10 s.
int loopStatusAfterRaising(int signal)
{
    QTimer request;
    request.setSingleShot(true);
    QObject::connect(&request, &QTimer::timeout, &request,
                     [signal] { static_cast<void>(std::raise(signal)); });
    request.start(0);
    QTimer ceiling;
    ceiling.setSingleShot(true);
    QObject::connect(&ceiling, &QTimer::timeout, &ceiling, [] { QCoreApplication::exit(1); });
    ceiling.start(10'000);
    return QCoreApplication::exec();
}

class QuitOnSignalsTest : public ::testing::TestWithParam<int> {};

TEST_P(QuitOnSignalsTest, ARequestQuitsTheEventLoopAndTheNextOneEndsTheProgram)
{
    {
        const QuitOnSignals quitOnSignals;
        EXPECT_FALSE(handledByDefault(GetParam()));
        EXPECT_EQ(loopStatusAfterRaising(GetParam()), 0);
        // Acted once: a second request while quitting would end the program the default way.
        EXPECT_TRUE(handledByDefault(GetParam()));
    }
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        EXPECT_TRUE(handledByDefault(signal)) << signal;
    }
}

INSTANTIATE_TEST_SUITE_P(Requests, QuitOnSignalsTest, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

} // namespace
} // namespace vantrel
