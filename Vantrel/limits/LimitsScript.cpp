#include "Vantrel/limits/LimitsScript.h"

#include "Vantrel/limits/CloseOnExecPipe.h"
#include "Vantrel/limits/LimitsDocument.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <new>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX leaves the declaration to us

namespace vantrel::limits {
namespace {

class FileDescriptor {
public:
    explicit FileDescriptor(int fd = -1) : fd_(fd) {}
    ~FileDescriptor() { reset(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    FileDescriptor(FileDescriptor&&) = delete;
    FileDescriptor& operator=(FileDescriptor&&) = delete;

    int get() const { return fd_; }
    void reset()
    {
        if (fd_ >= 0) {
            close(fd_); // Don't retry close on EINTR: the descriptor is gone either way.
            fd_ = -1;
        }
    }

private:
    int fd_;
};

// The launched script and the read end of its output; reaps the child exactly once. A run cut short (an
// exception) no longer wants the script's answer, so the guard kills the script before the wait, which
// could otherwise last for ever.
class RunningScript {
public:
    RunningScript(pid_t pid, int output) : pid_(pid), output_(output) {}
    ~RunningScript()
    {
        if (!reaped_) {
            output_.reset();
            kill(pid_, SIGKILL);
            reap();
        }
    }
    RunningScript(const RunningScript&) = delete;
    RunningScript& operator=(const RunningScript&) = delete;
    RunningScript(RunningScript&&) = delete;
    RunningScript& operator=(RunningScript&&) = delete;

    int output() const { return output_.get(); }
    void closeOutput() { output_.reset(); }

    // Call once. True when the child exited with status 0; a signal counts as failure.
    bool reap()
    {
        reaped_ = true;
        int status = 0;
        while (waitpid(pid_, &status, 0) < 0) {
            if (errno != EINTR) {
                return false;
            }
        }
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

private:
    pid_t pid_;
    FileDescriptor output_;
    bool reaped_ = false;
};

std::optional<pid_t> launch(const std::vector<std::string>& command, int standardOutput)
{
    std::vector<char*> argv;
    argv.reserve(command.size() + 1);
    for (const std::string& argument : command) {
        argv.push_back(const_cast<char*>(argument.c_str())); // NOLINT: posix_spawn's argv is not const
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, standardOutput, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    // Ignored signals and blocked masks survive exec; the script starts from the defaults, so that
    // SIGTERM reaches it whatever the calling thread had set.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    // A process group of its own, so that a termination request also reaches whatever the script started
    // and left holding its output (see requestTermination).
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);

    pid_t pid = 0;
    const int failure =
        posix_spawn(&pid, command.front().c_str(), &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return failure == 0 ? std::optional(pid) : std::nullopt;
}

// False on a read error; the bytes read so far are then of no use.
bool readToEnd(int fd, std::string& bytes)
{
    constexpr std::size_t chunkSize = 1 << 16;
    std::vector<char> chunk(chunkSize);
    for (;;) {
        const ssize_t count = read(fd, chunk.data(), chunk.size());
        if (count == 0) {
            return true;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        bytes.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

std::optional<nlohmann::json> runLimitsScript(const std::vector<std::string>& command,
                                              const LaunchObserver& launched)
{
    if (command.empty()) {
        return std::nullopt;
    }
    std::array<int, 2> ends{};
    // Close-on-exec, so that no other child started meanwhile holds the write end and delays the end of file.
    if (!openCloseOnExecPipe(ends, false)) {
        return std::nullopt;
    }
    FileDescriptor writeEnd(ends[1]);
    const std::optional<pid_t> pid = launch(command, writeEnd.get());
    writeEnd.reset();
    if (!pid) {
        close(ends[0]);
        return std::nullopt;
    }
    RunningScript script(*pid, ends[0]);
    try {
        if (launched) {
            launched(ScriptProcess(*pid));
        }
        std::string output;
        const bool complete = readToEnd(script.output(), output);
        script.closeOutput();
        if (!script.reap() || !complete) {
            return std::nullopt;
        }
        return decodeLimitsDocument(output);
    } catch (const std::bad_alloc&) {
        // Output too large to hold: the run fails, and the guard ends and reaps the script.
        return std::nullopt;
    }
}

} // namespace vantrel::limits
