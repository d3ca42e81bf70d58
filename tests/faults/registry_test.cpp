// What the registry asks of the system: platform/registry/store.cpp and folders.cpp there.

#include <fcntl.h>

#include "store/settings.h"
#include "tests/support.h"

namespace fs = std::filesystem;

namespace {

struct Calls {
    std::vector<fs::path> synchronised;
    long countdown = 0;  // the call that fails, from 1; 0 is none
} calls;

template <class Call>
auto through(Call call) -> decltype(call()) {
    if (calls.countdown == 0 || --calls.countdown != 0) return call();
    errno = EIO;
    return -1;
}

}  // namespace

// The linker puts these in the place of the library's calls.
extern "C" {
int __real_fsync(int file);
int __wrap_fsync(int file) {
    calls.synchronised.push_back(fs::read_symlink("/proc/self/fd/" + std::to_string(file)));
    return through([&] { return __real_fsync(file); });
}
int __real_renameat(int from, const char* name, int to, const char* newName);
int __wrap_renameat(int from, const char* name, int to, const char* newName) {
    return through([&] { return __real_renameat(from, name, to, newName); });
}
}

namespace {

struct RegistryCalls : testing::Test {
    tarntest::TemporaryFolder data{tarntest::inMemory};
    fs::path root = data.path() / "new/tarnutil/registry/HKEY_CURRENT_USER";
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryCalls() {
        tarntest::setEnvironment("XDG_DATA_HOME", data.file("new").c_str());
        EXPECT_EQ(registry.openKey("Top\\Leaf", 1), 1);
    }
    ~RegistryCalls() override {
        calls = {};
        registry.closeKey();
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryCalls, AFlushReachesEveryFolderUpToTheOneThatWasThere) {
    const auto has = [](const fs::path& folder) {
        return std::count(calls.synchronised.begin(), calls.synchronised.end(), folder);
    };
    EXPECT_EQ(has(data.path()), 1) << "the folder in which the data folder was made";
    calls.synchronised.clear();
    EXPECT_EQ(registry.flushKey(), 1);
    fs::path folder = root / "k-top/k-leaf";
    for (int i = 0; i < 6; ++i, folder = folder.parent_path()) EXPECT_EQ(has(folder), 1) << folder;
    EXPECT_EQ(calls.synchronised.size(), 6U);
    for (const long failing : {1, 6}) {
        calls.countdown = failing;
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
        calls.countdown = n;
        const int answer = made.openKey("Top\\Old", 1);
        hasFailed = calls.countdown == 0;
        calls.countdown = 0;
        EXPECT_EQ(fs::exists(folder / "v-v"), answer == 0) << n;
        EXPECT_EQ(answer, made.closeKey()) << n;
        RegDeleteKeyA(HKEY_CURRENT_USER, "Top\\Old");
    }
    EXPECT_FALSE(fs::exists(folder));
}

}  // namespace
