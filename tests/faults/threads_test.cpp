// All families on several threads at once, each thread with data of its own.  The thread sanitizer watches
// the build of the preset `tsan`; in every build the answers are compared.
//
// Left out, as their headers say: OptSymToJustSym, OptSymToExpnMth and OptSymToStrikePrc, which have one
// result for the whole process; setClock, setScreen, addResource, removeResources and setMessageBox, which
// are set before threads start; what the slot of getGlobalPointer leads to; the last error and the error
// mode, which the process has once.

#include <thread>

#include "tests/faults/families.h"

using tarntest::families;

// The C library guards its time zone by a lock that the sanitizer doesn't see.
extern "C" const char* __tsan_default_suppressions() {
    return "race:tzset_internal\n";
}

namespace {

using Threads = tarntest::Families;

TEST_F(Threads, FourAtOnceAnswerAsOneDoes) {
    constexpr int count = 4;
    constexpr int rounds = 20;
    std::vector<std::thread> threads;
    for (int n = 0; n < count; ++n) {
        std::vector<std::string> expected;
        for (const auto& family : families) expected.push_back(family.answer(n));
        threads.emplace_back([n, expected] {
            for (std::size_t i = 0; i < rounds * expected.size(); ++i)
                EXPECT_EQ(families[i % expected.size()].answer(n), expected[i % expected.size()]);
        });
    }
    for (std::thread& thread : threads) thread.join();
    RecordProperty("families", static_cast<int>(std::size(families)));
}

}  // namespace
