#pragma once

// Child processes for tests of what processes do to each other; not on Windows.

#if !defined(_WIN32)

#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace tarntest {

// Starts a child process that does a piece of work; see waitFor.
template <typename Work>
pid_t startChild(Work work) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    work();
    ::_exit(testing::Test::HasFailure() ? 1 : 0);
}

// Answers 0 if the child process ended by itself and what it expected held.
inline int waitFor(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
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
    int status = waitFor(child);
    for (int stop = 0; stop < n && WIFSTOPPED(status); ++stop) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        status = waitFor(child);
    }
    if (!WIFSTOPPED(status)) return false;
    ::kill(child, SIGKILL);
    return waitFor(child) == SIGKILL;
}

}  // namespace tarntest

#endif
