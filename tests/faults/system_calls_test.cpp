// System calls that fail, are interrupted or do a part of their work, under everything that reads or writes a
// file: platform/files.cpp, file_sharing.cpp, atomic_file.cpp, profile_files.cpp and registry_store.cpp.

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>

#include <algorithm>
#include <functional>

#include "tarnutil.h"
#include "tests/process.h"
#include "tests/support.h"
#include "tests/values.h"

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

struct SystemCalls : testing::Test {
    tarntest::TemporaryFolder folder{tarntest::inMemory};
    const std::string values = folder.path() / "tarnutil/registry/HKEY_CURRENT_USER/k-client";
    tarnEngineData record;
    tarnIndexDataFile set;
    tarnIniFile ini{"client"};
    tarnRegistry registry{HKEY_CURRENT_USER};

    // What saves in one file: a failure leaves its old content, or what was written until then.
    struct Saver {
        std::string name, path;
        std::function<int()> save;
        bool keeps;
    };
    const std::vector<Saver> savers{
        {"whole", file("whole"),
         [this] { return writeFile(file("whole").c_str(), "twenty-four bytes of text", 24); }, false},
        {"record", file("record"), [this] { return record.saveData(file("record").c_str()); }, false},
        {"set", file("set"), [this] { return set.writeIndexDataFile(file("set").c_str()); }, false},
        {"ini", file("client.ini"), [this] { return ini.writeIniString("section", "key", "value"); }, true},
        {"registry", values + "/v-v", [this] { return registry.set("v", "value", 0); }, true}};

    SystemCalls() {
        tarntest::setEnvironment("XDG_DATA_HOME", folder.path().c_str());
        ini.setIniFileDirectory(folder.path().c_str());
        registry.openKey("client", 1);
        for (std::int32_t row = 0; row < 3; ++row)
            record.storeMultiData(336, row, std::data({tarntest::text("21.5")}), 0);
        set.addIndexRecord(7, 0, 2);
        set.addDataRecord(7, 0, 1, "value");
        tarntest::fill(file("rows"), "#1^7|15|seven^#0|2^336|15|a^737|5|1^336|15|b^737|5|2^");
        tarntest::fill(file("menu"), "POPUP,a,1,MENUITEM,c,3,4,d,END");
    }
    ~SystemCalls() override {
        calls = {};
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }

    [[nodiscard]] std::string file(const char* name) const { return folder.file(name); }

    // Saves and loads everything, and answers what came of it.
    std::string saveAndLoad() {
        std::string all;
        for (const Saver& saver : savers) all += std::to_string(saver.save());
        tarnEngineData rows, saved;
        tarnIndexDataFile loaded;
        tarnMenuParser menu;
        char text[9] = "", value[9] = "";
        all +=
            std::to_string(rows.loadData(file("rows").c_str(), loadReplace)) + tarntest::describe(rows.root);
        all += std::to_string(saved.loadData(file("record").c_str(), loadReplace)) +
               tarntest::describe(saved.root);
        all += std::to_string(loaded.readIndexDataFile(file("set").c_str()) + loaded.getNumberRepeats(7, 0));
        all += std::to_string(menu.getMenuDef(file("menu").c_str(), 0)->childCount);
        translateFile(0, file("whole").c_str(), file("scrambled").c_str());
        all += tarntest::contentOf(file("scrambled"));
        all += std::to_string(ini.readIniString("section", "key", "none", text, 9)) + text;
        all += std::to_string(registry.get("v", value, 9) + registry.flushKey()) + value;
        return all + std::to_string(tarnRegistry(HKEY_CURRENT_USER).openKey("client\\below", 1));
    }
};

TEST_F(SystemCalls, SingleBytesAndInterruptionsChangeNothing) {
    const std::string expected = saveAndLoad();
    for (const char* left : {".client.ini.new", "tarnutil/registry/HKEY_CURRENT_USER/k-client/.new"})
        tarntest::fill(file(left), "of a process that died");
    tarnRegistry(HKEY_CURRENT_USER).deleteSubKeyTree("client");
    for (const Saver& saver : savers) std::filesystem::remove(saver.path);
    calls.grudging = true;
    EXPECT_EQ(saveAndLoad(), expected);
    std::printf("%ld calls were interrupted\n", calls.failed);
}

TEST_F(SystemCalls, AWriteThatFailsAtAnyByteIsTold) {
    for (const Saver& saver : savers) {
        calls.limited = true;
        calls.room = 100000;
        EXPECT_EQ(saver.save(), 1) << saver.name;
        const std::size_t bytes = 100000 - calls.room;
        const std::string whole = tarntest::contentOf(saver.path);
        EXPECT_GE(bytes, whole.size());
        for (std::size_t room = 0; room < bytes; ++room) {
            tarntest::fill(saver.path, "");
            calls.room = room;
            SetLastError(saver.name == "registry" ? ERROR_DISK_FULL : ERROR_SUCCESS);  // which sets none
            EXPECT_EQ(saver.save(), 0) << saver.name << room;
            EXPECT_EQ(GetLastError(), ERROR_DISK_FULL) << saver.name << room;
            EXPECT_EQ(tarntest::contentOf(saver.path).size(), saver.keeps ? 0 : std::min(room, whole.size()));
        }
        calls.limited = false;
        EXPECT_EQ(saver.save(), 1) << saver.name;
        EXPECT_EQ(tarntest::contentOf(saver.path), whole);
        std::printf("%s: a write failed at each of %zu bytes\n", saver.name.c_str(), bytes);
    }
}

TEST_F(SystemCalls, EachCallThatFailsLeavesTheOldContentOrTheNew) {
    for (const Saver& saver : savers) {
        if (!saver.keeps) continue;
        EXPECT_EQ(saver.save(), 1);
        const std::string whole = tarntest::contentOf(saver.path), old = "";
        long failedBefore = -1;
        for (long n = 1; failedBefore != calls.failed; ++n) {
            tarntest::fill(saver.path, old);
            failedBefore = calls.failed;
            calls.countdown = n;
            const int result = saver.save();
            calls.countdown = 0;
            const std::string after = tarntest::contentOf(saver.path);
            EXPECT_TRUE(after == whole || (result == 0 && after == old)) << saver.name << n;
            EXPECT_EQ(saver.save(), 1) << saver.name << n;
        }
    }
    std::printf("%ld calls failed in writes of settings\n", calls.failed);
}

TEST_F(SystemCalls, AnyCallThatFailsLeavesNoDescriptorAndTheNextRoundWorks) {
    const std::string expected = saveAndLoad();
    const std::int32_t handles = tarn::openHandles();
    long failedBefore = -1;
    for (long n = 1; failedBefore != calls.failed; ++n) {
        failedBefore = calls.failed;
        calls.countdown = n;
        saveAndLoad();
        calls.countdown = 0;
        EXPECT_EQ(saveAndLoad(), expected) << n;
    }
    EXPECT_EQ(tarn::openHandles(), handles);
    std::printf("%ld calls failed in saves and loads\n", calls.failed);
}

// A real disk without room: a small file system of the child's own.
TEST_F(SystemCalls, AFullDiskIsToldAndHealsWithRoom) {
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
        tarntest::fill(file("filler"), std::string(70000, 'x'));
        for (const Saver& saver : savers) {
            EXPECT_EQ(saver.save(), 0) << saver.name;
            EXPECT_EQ(tarntest::contentOf(saver.path), saver.keeps ? "old" : "") << saver.name;
        }
        std::filesystem::remove(file("filler"));
        for (const Saver& saver : savers) EXPECT_EQ(saver.save(), 1) << saver.name;
    }));
    if (WIFEXITED(status) && WEXITSTATUS(status) == noFileSystem)
        GTEST_SKIP() << "this process may not mount a small file system of its own";
    EXPECT_EQ(status, 0);
}

}  // namespace
