// System calls that fail, are interrupted or do a part of their work, under everything that reads or writes a
// file: platform/files/operations.cpp, platform/files/sharing.cpp, platform/files/replacement.cpp,
// platform/profile/operations.cpp and platform/registry/store.cpp.

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>

#include <algorithm>
#include <functional>

#include "tests/faults/families.h"
#include "tests/process.h"

namespace {

struct Calls {
    bool grudging = false;  // each call is interrupted first, and moves one byte
    bool interrupted = false;
    long countdown = 0;  // the call that fails, from 1; 0 is none
    bool limited = false;
    std::size_t room = 0;  // bytes that the disk has left, if it is limited
    long failed = 0;

    int fail(int error) {
        ++failed;
        errno = error;
        return -1;
    }
} calls;

template <class Call>
auto through(bool interruptible, Call call) -> decltype(call()) {
    if (calls.grudging && interruptible && (calls.interrupted = !calls.interrupted)) return calls.fail(EINTR);
    if (calls.countdown > 0 && --calls.countdown == 0) return calls.fail(EIO);
    return call();
}

std::size_t part(std::size_t bytes) {
    return calls.grudging ? std::min<std::size_t>(bytes, 1) : bytes;
}

}  // namespace

// The linker puts these in the place of the library's calls.
#define TARN_THROUGH(interruptible, Result, name, parameters, call)                    \
    Result __real_##name parameters;                                                   \
    Result __wrap_##name parameters {                                                  \
        return through(interruptible, [&]() -> Result { return __real_##name call; }); \
    }

extern "C" {
TARN_THROUGH(true, ssize_t, read, (int file, void* bytes, std::size_t count), (file, bytes, part(count)))
TARN_THROUGH(true, int, open64, (const char* path, int flags, mode_t mode), (path, flags, mode))
TARN_THROUGH(true, int, openat64, (int folder, const char* path, int flags, mode_t mode),
             (folder, path, flags, mode))
TARN_THROUGH(true, int, flock, (int file, int operation), (file, operation))
TARN_THROUGH(true, int, ftruncate64, (int file, std::int64_t size), (file, size))
TARN_THROUGH(true, int, fsync, (int file), (file))
TARN_THROUGH(false, int, renameat, (int a, const char* from, int b, const char* to), (a, from, b, to))
TARN_THROUGH(false, int, mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode))
TARN_THROUGH(false, int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
ssize_t __real_write(int file, const void* bytes, std::size_t count);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count) {
    return through(true, [&]() -> ssize_t {
        if (!calls.limited) return __real_write(file, bytes, part(count));
        if (calls.room == 0) return calls.fail(ENOSPC);
        const std::size_t written = std::min(count, calls.room);
        calls.room -= written;
        return __real_write(file, bytes, written);
    });
}
int __real_fcntl64(int file, int command, void* lock);
int __wrap_fcntl64(int file, int command, void* lock) {
    return through(command == F_OFD_SETLKW, [&] { return __real_fcntl64(file, command, lock); });
}
}

namespace {

struct SystemCalls : tarntest::Families {
    tarnEngineData record;
    tarnIndexDataFile set;
    tarnIniFile ini{"client"};
    tarnRegistry registry{HKEY_CURRENT_USER};

    // What saves in one file: a failure leaves its old content, or what was written until then.
    struct Saver {
        std::string name;
        std::string path;
        std::function<int()> save;
        bool keeps;
    };
    const std::string whole = folder.file("whole");
    const std::string rows = folder.file("record");
    const std::string records = folder.file("set");
    const std::vector<Saver> savers{
        {"whole", whole, [this] { return writeFile(whole.c_str(), "twenty-four bytes of text", 24); }, false},
        {"record", rows, [this] { return record.saveData(rows.c_str()); }, false},
        {"set", records, [this] { return set.writeIndexDataFile(records.c_str()); }, false},
        {"ini", folder.file("client.ini"), [this] { return ini.writeIniString("section", "key", "value"); },
         true},
        {"registry", folder.file("tarnutil/registry/HKEY_CURRENT_USER/k-client/v-v"),
         [this] { return registry.set("v", "value", 0); }, true}};

    SystemCalls() {
        ini.setIniFileDirectory(folder.path().c_str());
        registry.openKey("client", 1);
        const auto price = tarntest::text("21.5");
        for (std::int32_t row = 0; row < 3; ++row) record.storeMultiData(336, row, &price, 0);
        set.addIndexRecord(7, 0, 2);
        set.addDataRecord(7, 0, 1, "value");
    }
    ~SystemCalls() override {
        std::fprintf(stderr, "%ld system calls have failed\n", calls.failed);
        calls = {};
    }
};

TEST_F(SystemCalls, SingleBytesAndInterruptionsChangeNothing) {
    for (const auto& family : tarntest::families) {
        const std::string expected = family.answer(1);
        tarntest::fill(folder.file("." + std::string(tarntest::longText) + ".ini.new"), "of a dead process");
        calls.grudging = true;
        EXPECT_EQ(family.answer(1), expected) << family.name;
        calls.grudging = false;
    }
}

TEST_F(SystemCalls, AnyThatFailsLeavesNothingOpenAndTheNextRoundWorks) {
    const std::int32_t handles = tarn::openHandles();
    for (const auto& family : tarntest::families) {
        const std::string expected = family.answer(1);
        long failedBefore = -1;
        for (long n = 1; failedBefore != calls.failed; ++n) {
            failedBefore = calls.failed;
            calls.countdown = n;
            family.answer(1);
            calls.countdown = 0;
            EXPECT_EQ(family.answer(1), expected) << family.name << n;
        }
    }
    EXPECT_EQ(tarn::openHandles(), handles);
}

TEST_F(SystemCalls, AWriteThatFailsAtAnyByteIsReported) {
    for (const Saver& saver : savers) {
        calls.limited = true;
        calls.room = 100000;
        EXPECT_EQ(saver.save(), 1) << saver.name;
        const std::size_t bytes = 100000 - calls.room;
        const std::string content = tarntest::contentOf(saver.path);
        EXPECT_GE(bytes, content.size());
        for (std::size_t room = 0; room < bytes; ++room) {
            tarntest::fill(saver.path, "");
            calls.room = room;
            SetLastError(saver.name == "registry" ? ERROR_DISK_FULL : ERROR_SUCCESS);  // which sets none
            EXPECT_EQ(saver.save(), 0) << saver.name << room;
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL) << saver.name << room;
            EXPECT_EQ(tarntest::contentOf(saver.path).size(),
                      saver.keeps ? 0 : std::min(room, content.size()));
        }
        calls.limited = false;
        EXPECT_EQ(saver.save(), 1) << saver.name;
        EXPECT_EQ(tarntest::contentOf(saver.path), content);
    }
}

TEST_F(SystemCalls, EachCallThatFailsLeavesTheOldContentOrTheNew) {
    for (const Saver& saver : savers) {
        if (!saver.keeps) continue;
        EXPECT_EQ(saver.save(), 1);
        const std::string content = tarntest::contentOf(saver.path), old = "";
        long failedBefore = -1;
        for (long n = 1; failedBefore != calls.failed; ++n) {
            tarntest::fill(saver.path, old);
            failedBefore = calls.failed;
            calls.countdown = n;
            const int result = saver.save();
            calls.countdown = 0;
            const std::string after = tarntest::contentOf(saver.path);
            EXPECT_TRUE(after == content || (result == 0 && after == old)) << saver.name << n;
            EXPECT_EQ(saver.save(), 1) << saver.name << n;
        }
    }
}

// A real disk without room: a small file system of the child's own.
TEST_F(SystemCalls, AFullDiskIsReportedAndHealsWithRoom) {
    constexpr int noFileSystem = 77;
    const std::string place = folder.path().string();
    const auto onlyTo = [](auto own) { return std::to_string(own) + ' ' + std::to_string(own) + " 1"; };
    const std::string user = onlyTo(::geteuid()), group = onlyTo(::getegid());
    const int status = tarntest::waitFor(tarntest::startChild([&] {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) ::_exit(noFileSystem);
        tarntest::fill("/proc/self/setgroups", "deny");
        tarntest::fill("/proc/self/uid_map", user);
        tarntest::fill("/proc/self/gid_map", group);
        if (::mount("tmpfs", place.c_str(), "tmpfs", 0, "size=64k") != 0) ::_exit(noFileSystem);
        tarnRegistry(HKEY_CURRENT_USER).openKey("client", 1);
        registry.openKey("client", 1);
        for (const Saver& saver : savers) EXPECT_EQ(saver.save(), 1) << saver.name;
        for (const Saver& saver : savers) tarntest::fill(saver.path, saver.keeps ? "old" : "");
        tarntest::fill(folder.file("filler"), std::string(70000, 'x'));
        for (const Saver& saver : savers) {
            EXPECT_EQ(saver.save(), 0) << saver.name;
            EXPECT_EQ(tarntest::contentOf(saver.path), saver.keeps ? "old" : "") << saver.name;
        }
        std::filesystem::remove(folder.file("filler"));
        for (const Saver& saver : savers) EXPECT_EQ(saver.save(), 1) << saver.name;
    }));
    if (WIFEXITED(status) && WEXITSTATUS(status) == noFileSystem)
        GTEST_SKIP() << "this process may not mount a small file system of its own";
    EXPECT_EQ(status, 0);
}

}  // namespace
