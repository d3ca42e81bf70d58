// What the registry asks of the system: platform/registry/store.cpp and folders.cpp there.

#include "store/settings.h"
#include "tests/support.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> synchronised;
long countdown = 0;  // to the call that fails; 0 is none

bool mustFail() {
    errno = EIO;
    return countdown != 0 && --countdown == 0;
}

}  // namespace

// The linker puts these in the place of the library's calls.
extern "C" {
int __real_fsync(int file);
int __wrap_fsync(int file) {
    synchronised.push_back(fs::read_symlink("/proc/self/fd/" + std::to_string(file)));
    return mustFail() ? -1 : __real_fsync(file);
}
int __real_renameat(int from, const char* name, int to, const char* newName);
int __wrap_renameat(int from, const char* name, int to, const char* newName) {
    return mustFail() ? -1 : __real_renameat(from, name, to, newName);
}
}

namespace {

struct RegistryCalls : testing::Test {
    tarntest::TemporaryFolder data{tarntest::inMemory};
    fs::path root = data.path() / "new/tarnutil/registry/HKEY_CURRENT_USER";
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryCalls() {
        tarntest::setEnvironment("XDG_DATA_HOME", data.file("new").c_str());
        synchronised.clear();
        EXPECT_EQ(registry.openKey("Top\\Leaf", 1), 1);
    }
    ~RegistryCalls() override {
        countdown = 0;
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryCalls, AFlushReachesEveryFolderUpToTheOneThatWasThere) {
    EXPECT_EQ(std::count(synchronised.begin(), synchronised.end(), data.path()), 1)
        << "the folder in which the data folder was made";
    synchronised.clear();
    EXPECT_EQ(registry.flushKey(), 1);
    std::vector<fs::path> expected = {root / "k-top/k-leaf"};
    while (expected.back() != data.file("new")) expected.push_back(expected.back().parent_path());
    EXPECT_EQ(synchronised, expected);
    for (const long failing : {1, 6}) {
        countdown = failing;
        EXPECT_EQ(registry.flushKey(), 0) << failing;
    }
}

TEST_F(RegistryCalls, WhatWasInAFolderThatIsNoKeyIsLostOnlyToTheNewKey) {
    const fs::path folder = root / "k-top/k-old";
    tarnRegistry made(HKEY_CURRENT_USER);
    bool hasFailed = true;
    for (long n = 1; hasFailed; ++n) {
        fs::create_directories(folder / "k-below");
        tarntest::fill(folder / "v-v", "old");
        countdown = n;
        const int answer = made.openKey("Top\\Old", 1);
        hasFailed = countdown == 0;
        countdown = 0;
        EXPECT_EQ(fs::exists(folder / "v-v"), answer == 0) << n;
        EXPECT_EQ(answer, made.closeKey()) << n;
        RegDeleteKeyA(HKEY_CURRENT_USER, "Top\\Old");
    }
    EXPECT_FALSE(fs::exists(folder));
}

}  // namespace
