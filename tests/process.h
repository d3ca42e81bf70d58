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

// Two child processes write a thousand rounds, each under a name of its own, while this one reads both
// names: it finds the rounds in their order, to the last.
template <typename Write, typename Read>
void twoWritersAndAReader(Write write, Read read) {
    constexpr int rounds = 1000;
    const std::string names[] = {"one", "two"};
    pid_t writers[2] = {};
    for (int i = 0; i < 2; ++i) {
        writers[i] = startChild([&] {
            for (int round = 1; round <= rounds; ++round) write(names[i], std::to_string(round));
        });
    }
    int seen[2] = {};
    for (int reads = 0; reads < 1'000'000 && seen[0] + seen[1] < 2 * rounds; ++reads) {
        const int round = std::stoi(read(names[reads % 2]));
        EXPECT_GE(round, seen[reads % 2]) << "an update was lost";
        seen[reads % 2] = round;
    }
    EXPECT_EQ(seen[0] + seen[1], 2 * rounds);
    for (const pid_t writer : writers) EXPECT_EQ(waitFor(writer), 0);
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
