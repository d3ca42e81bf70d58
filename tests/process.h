#pragma once

// Child processes for tests of what processes do to each other; not on Windows.

#if !defined(_WIN32)

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>

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

// Runs a piece of work in a child process that is killed at its n-th stop: one before and one after each system
// call.  Answers false if the work was done before that.
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
    if (WIFSTOPPED(status)) {
        ::kill(child, SIGKILL);
        return waitFor(child) == SIGKILL;
    }
    EXPECT_EQ(status, 0);
    return false;
}

// Leaves this process few descriptors until the end of the test.
struct FewDescriptors {
    rlimit before{};

    explicit FewDescriptors(rlim_t count) {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit few{count, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FewDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before); }
};

}  // namespace tarntest

#endif
