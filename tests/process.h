#pragma once

// Child processes for tests of what processes do to each other; not on Windows.

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace tarntest {

// Starts a child process that does a piece of work and ends with exit code 0; see waitFor.
template <typename Work>
pid_t startChild(Work work) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    work();
    ::_exit(0);
}

// Answers the exit code of a child process, -1 if a signal ended it.
inline int waitFor(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Does a piece of work in a child process and kills it at its n-th stop: one before and one behind each
// system call.  Answers false if the work was done before that.
template <typename Work>
bool killedAtStop(int n, Work work) {
    const pid_t child = startChild([&] {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        work();
    });
    int status = 0;
    ::waitpid(child, &status, 0);
    for (int stop = 0; stop < n && WIFSTOPPED(status); ++stop) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        ::waitpid(child, &status, 0);
    }
    if (!WIFSTOPPED(status)) return false;
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return true;
}

}  // namespace tarntest
