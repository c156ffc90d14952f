// How long the main thread stalls while a worker runs a limits script that prints a 100 MiB document
// and hands the result back through a queued call, as the application does. A 2 ms repeating timer on
// the main thread records its worst lateness (wall clock), and the main thread's own CPU time within
// that longest gap: the lateness also holds the time spent waiting for a CPU on a busy machine, the CPU
// time is the part the main thread itself was busy. Peers: nothing else running, and a worker that only
// fills 300 MiB of fresh memory (about what a fetch of 100 MiB touches), which shows what the machine
// charges the main thread for another thread's page faults. Then the fetches. Run: vantrel_limits_stall_bench
// [rounds]; the aim is no stall over 5 ms.
#include "Vantrel/limits/LimitsScript.h"
#include "Vantrel/limits/UsageInterpretation.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace vantrel::limits;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr auto tickInterval = std::chrono::milliseconds(2);
constexpr auto quietPhase = std::chrono::milliseconds(1500);
constexpr auto settleAfterResult = std::chrono::milliseconds(300);

Milliseconds threadCpuTime()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
}

struct Stall {
    double lateness = 0;    // worst lateness of a tick, wall clock
    double busy = 0;        // main-thread CPU time within that gap
    double longestBusy = 0; // most main-thread CPU time within any gap
};

class StallMeter {
public:
    StallMeter()
    {
        timer_.setTimerType(Qt::PreciseTimer);
        timer_.setInterval(tickInterval);
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { tick(); });
    }

    void start()
    {
        reset();
        timer_.start();
    }
    void reset()
    {
        last_ = Clock::now();
        lastCpu_ = threadCpuTime();
        worst_ = {};
    }
    Stall worst() const { return worst_; }

private:
    void tick()
    {
        const Clock::time_point now = Clock::now();
        const Milliseconds cpu = threadCpuTime();
        const double lateness = Milliseconds(now - last_ - tickInterval).count();
        const double busy = (cpu - lastCpu_).count();
        if (lateness > worst_.lateness) {
            worst_.lateness = lateness;
            worst_.busy = busy;
        }
        worst_.longestBusy = std::max(worst_.longestBusy, busy);
        last_ = now;
        lastCpu_ = cpu;
    }

    QTimer timer_;
    Clock::time_point last_;
    Milliseconds lastCpu_{};
    Stall worst_;
};

struct Round {
    Stall stall;
    double resultBlock = 0; // interpretation and release of the document, on the main thread
    bool applied = false;
};

Stall memoryPeer(StallMeter& meter)
{
    meter.reset();
    std::thread worker([] {
        constexpr std::size_t touched = std::size_t{300} << 20U;
        std::vector<char> memory(touched, 'x');
        QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                                  Qt::QueuedConnection);
    });
    QCoreApplication::exec();
    worker.join();
    return meter.worst();
}

Round fetchRound(StallMeter& meter, const std::vector<std::string>& command)
{
    Round round;
    meter.reset();
    std::thread worker([&command, &round] {
        warmUpInterpretation();
        std::optional<nlohmann::json> result = runLimitsScript(command, [](const ScriptProcess&) {});
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [&round, result = std::move(result)]() mutable {
                const Clock::time_point start = Clock::now();
                if (result) {
                    round.applied =
                        !interpretUsage(*result, currentUsageContext("počítač")).statusText.empty();
                }
                result.reset();
                round.resultBlock = Milliseconds(Clock::now() - start).count();
                QTimer::singleShot(settleAfterResult, QCoreApplication::instance(), &QCoreApplication::quit);
            },
            Qt::QueuedConnection);
    });
    QCoreApplication::exec();
    worker.join();
    round.stall = meter.worst();
    return round;
}

void print(const char* phase, const Stall& stall)
{
    std::printf("  %-28s %8.2f %12.2f %14.2f", phase, stall.lateness, stall.busy, stall.longestBusy);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    const std::vector<std::string> command{"/bin/sh",
                                           VANTREL_FIXTURES "/limits/scripts/hundred_megabytes.sh"};

    StallMeter meter;
    meter.start();
    QTimer::singleShot(quietPhase, &application, &QCoreApplication::quit);
    QCoreApplication::exec();
    const Stall quiet = meter.worst();

    std::printf("Main thread under a 2 ms timer, ms: worst lateness | main-thread CPU in that gap | most "
                "main-thread CPU in any gap\n");
    print("quiet, no fetch (peer)", quiet);
    std::printf("\n");
    print("300 MiB touched (peer)", memoryPeer(meter));
    std::printf("\n");
    Stall worst;
    for (int index = 1; index <= rounds; ++index) {
        const Round round = fetchRound(meter, command);
        worst.lateness = std::max(worst.lateness, round.stall.lateness);
        worst.longestBusy = std::max(worst.longestBusy, round.stall.longestBusy);
        print(("fetch of 100 MiB, round " + std::to_string(index)).c_str(), round.stall);
        std::printf("   result block %.2f ms, %s\n", round.resultBlock, round.applied ? "applied" : "failed");
    }
    std::printf(
        "During fetches: worst lateness %.2f ms (quiet peer %.2f ms, ratio %.2f); main thread busy at "
        "most %.2f ms in one gap\n",
        worst.lateness, quiet.lateness, quiet.lateness > 0 ? worst.lateness / quiet.lateness : 0.0,
        worst.longestBusy);
    return 0;
}
