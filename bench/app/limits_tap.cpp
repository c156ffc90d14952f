// A measuring stand-in for python3 on the limits benchmark's PATH: Vantrel starts the limits script as
// `/usr/bin/env python3 SCRIPT --live --json`, and this program runs the interpreter named by
// VANTREL_TAP_PYTHON with the same arguments, passes its standard output on, and appends one JSON line
// per run to VANTREL_TAP_LOG: when it started and ended (Unix seconds), its exit status, the CPU time of
// the run and of every process it waited for, its peak resident memory and the document it printed.
// Being small, it leaves the run's peak memory its own: a child's peak counts the parent it was forked
// from.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double unixSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double milliseconds(const timeval& time)
{
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

std::string jsonString(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (byte < 0x20) {
            std::array<char, 8> escaped{};
            static_cast<void>(std::snprintf(escaped.data(), escaped.size(), "\\u%04x", byte));
            quoted += escaped.data();
        } else {
            quoted += character;
        }
    }
    return quoted + "\"";
}

// Vantrel reads the document from here; a reader that went away loses nothing the log keeps.
void passOn(const char* data, size_t size)
{
    while (size > 0) {
        const ssize_t written = write(STDOUT_FILENO, data, size);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
}

} // namespace

int main(int argc, char** argv)
{
    const char* python = std::getenv("VANTREL_TAP_PYTHON");
    const char* log = std::getenv("VANTREL_TAP_LOG");
    if (python == nullptr || log == nullptr || argc < 1) {
        static_cast<void>(std::fputs("limits_tap: set VANTREL_TAP_PYTHON and VANTREL_TAP_LOG\n", stderr));
        return 2;
    }
    std::array<int, 2> output{};
    if (pipe(output.data()) != 0) {
        return 2;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, output[0]);
    posix_spawn_file_actions_addclose(&actions, output[1]);
    argv[0] = const_cast<char*>(python); // NOLINT: posix_spawn's argv is not const
    const double started = unixSeconds();
    pid_t child = 0;
    const int failed = posix_spawn(&child, python, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    if (failed != 0) {
        return 127;
    }
    std::string document;
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t count = read(output[0], buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        document.append(buffer.data(), static_cast<size_t>(count));
        passOn(buffer.data(), static_cast<size_t>(count));
    }
    close(output[0]);
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    const double ended = unixSeconds();
    const int exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    const std::string line =
        "{\"start\": " + std::to_string(started) + ", \"end\": " + std::to_string(ended) +
        ", \"status\": " + std::to_string(exitStatus) +
        ", \"cpuMs\": " + std::to_string(milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime)) +
        ", \"peakRssKb\": " + std::to_string(usage.ru_maxrss) + ", \"stdout\": " + jsonString(document) +
        "}\n";
    if (FILE* stream = std::fopen(log, "a")) {
        static_cast<void>(std::fputs(line.c_str(), stream));
        static_cast<void>(std::fclose(stream));
    }
    return exitStatus;
}
