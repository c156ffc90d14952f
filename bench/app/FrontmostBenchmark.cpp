// What one change of the window in front costs: naming its application from its desktop entry and walking
// its processes, against the rule it replaced (the window's class and /proc/PID/comm compared with the
// list), in the same run. The window is a terminal with two tabs, one running a shell and one a program;
// its class has no desktop entry, so every lookup goes through all the places an entry could be. Run:
//   vantrel_frontmost_bench [--benchmark_repetitions=N]; the ratios are printed after the table.
#include "Vantrel/app/CompanionApps.h"
#include "Vantrel/app/FrontmostIdentifier.h"
#include "Vantrel/app/linux/DesktopEntryNames.h"
#include "Vantrel/app/linux/ProcfsProcessTable.h"

#include <benchmark/benchmark.h>

#include "bench/RatioReporter.h"
#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace vantrel;

// A process of the tree ends when its parent does, and leaves the benchmark's output alone.
void endWithParent()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

// A terminal-like process: two children, each leading a session as a tab's shell does, one of them with
// a program of its own. Everything ends with the benchmark.
class TerminalTree {
public:
    TerminalTree()
    {
        terminal_ = fork();
        if (terminal_ == 0) {
            endWithParent();
            for (int tab = 0; tab < 2; ++tab) {
                if (fork() == 0) {
                    endWithParent();
                    setsid();
                    if (tab == 1 && fork() == 0) {
                        endWithParent();
                        execl("/bin/sleep", "sleep", "3600", static_cast<char*>(nullptr));
                        _exit(127);
                    }
                    execl("/bin/sleep", "sh", "3600", static_cast<char*>(nullptr));
                    _exit(127);
                }
            }
            pause();
            _exit(0);
        }
        usleep(200'000); // let the tabs start
    }
    ~TerminalTree()
    {
        kill(terminal_, SIGKILL);
        waitpid(terminal_, nullptr, 0);
    }
    TerminalTree(const TerminalTree&) = delete;
    TerminalTree& operator=(const TerminalTree&) = delete;
    TerminalTree(TerminalTree&&) = delete;
    TerminalTree& operator=(TerminalTree&&) = delete;

    pid_t pid() const { return terminal_; }

private:
    pid_t terminal_ = -1;
};

const TerminalTree& terminal()
{
    static const TerminalTree tree;
    return tree;
}

FrontmostWindow terminalWindow()
{
    FrontmostWindow window;
    window.appId = "Vantrel-Bench-Terminal";
    window.instanceName = "vantrel-bench-terminal";
    window.pid = terminal().pid();
    return window;
}

// The rule before desktop entries and process trees: the class and the process's short name.
void BM_ClassAndProcessName(benchmark::State& state)
{
    const FrontmostWindow window = terminalWindow();
    for ([[maybe_unused]] auto _ : state) {
        std::ifstream comm("/proc/" + std::to_string(*window.pid) + "/comm");
        std::string name;
        std::getline(comm, name);
        benchmark::DoNotOptimize(isCompanionName(window.appId) || isCompanionName(name));
    }
}

void identifyAndDecide(DesktopEntryNames& names, const FrontmostWindow& window)
{
    static ProcfsProcessTable processes;
    FrontmostIdentifier identifier({[&names](const FrontmostWindow& shown) { return names.nameFor(shown); },
                                    [](std::int64_t pid) { return inspectProcessTree(pid, processes); }});
    benchmark::DoNotOptimize(isCompanion(identifier.identify(window)));
}

// The first window after the start, or after applications were installed: every entry is read once to
// learn the window classes they claim.
void BM_IdentifyFirstApplication(benchmark::State& state)
{
    for ([[maybe_unused]] auto _ : state) {
        DesktopEntryNames names;
        identifyAndDecide(names, terminalWindow());
    }
}

// A window whose application was not in front before: its entry is looked up.
void BM_IdentifyNewApplication(benchmark::State& state)
{
    DesktopEntryNames names;
    FrontmostWindow window = terminalWindow();
    int application = 0;
    for ([[maybe_unused]] auto _ : state) {
        window.appId = "Vantrel-Bench-" + std::to_string(++application);
        identifyAndDecide(names, window);
    }
}

// An application seen before: its name is kept, its processes are walked.
void BM_IdentifyKnownApplication(benchmark::State& state)
{
    DesktopEntryNames names;
    const FrontmostWindow window = terminalWindow();
    for ([[maybe_unused]] auto _ : state) {
        identifyAndDecide(names, window);
    }
}

// A terminal in front: its processes at every 2-second tick.
void BM_TerminalAtATick(benchmark::State& state)
{
    ProcfsProcessTable processes;
    const pid_t pid = terminal().pid();
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(inspectProcessTree(pid, processes));
    }
}

BENCHMARK(BM_ClassAndProcessName);
BENCHMARK(BM_IdentifyFirstApplication);
BENCHMARK(BM_IdentifyNewApplication);
BENCHMARK(BM_IdentifyKnownApplication);
BENCHMARK(BM_TerminalAtATick);

} // namespace

int main(int argc, char** argv)
{
    terminal();
    return vantrel::bench::runWithRatios(argc, argv,
                                         {{"BM_IdentifyFirstApplication", "BM_ClassAndProcessName"},
                                          {"BM_IdentifyNewApplication", "BM_ClassAndProcessName"},
                                          {"BM_IdentifyKnownApplication", "BM_ClassAndProcessName"},
                                          {"BM_TerminalAtATick", "BM_ClassAndProcessName"}});
}
