// System calls that fail, are interrupted or do a part of their work, under everything that reads or writes a
// file: platform/files/operations.cpp, platform/files/sharing.cpp, platform/files/replacement.cpp,
// platform/profile/operations.cpp, platform/registry/store.cpp and platform/registry/folders.cpp.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <functional>

#include "tests/faults/families.h"

namespace {

struct Calls {
    bool grudging = false;  // each call is interrupted first, and moves half of the bytes
    bool interrupted = false;
    long countdown = 0;  // the call that fails, from 1; 0 is none
    int error = EIO;
    std::string lastFailed;
    long failed = 0;
    bool limited = false;
    std::size_t room = 0;          // bytes that the disk has left, if it is limited
    std::vector<std::string> log;  // the calls that succeeded, by name
    std::vector<std::filesystem::path> synchronised;

    void failAt(long nth, int failure = EIO) {
        countdown = nth;
        error = failure;
    }
    int fail(int failure) {
        ++failed;
        errno = failure;
        return -1;
    }
    bool isToFail(const char* name) {
        if (countdown > 0 && --countdown == 0) {
            lastFailed = name;
            return true;
        }
        log.emplace_back(name);
        return false;
    }
} calls;

template <class Call>
auto through(const char* name, bool interruptible, Call call) -> decltype(call()) {
    if (calls.grudging && interruptible && (calls.interrupted = !calls.interrupted)) return calls.fail(EINTR);
    if (calls.isToFail(name)) return calls.fail(calls.error);
    return call();
}

std::size_t part(std::size_t bytes) {
    return calls.grudging ? (bytes + 1) / 2 : bytes;
}

}  // namespace

// The linker puts these in the place of the library's calls.
#define TARN_THROUGH(interruptible, Result, name, parameters, call)                           \
    Result __real_##name parameters;                                                          \
    Result __wrap_##name parameters {                                                         \
        return through(#name, interruptible, [&]() -> Result { return __real_##name call; }); \
    }

extern "C" {
TARN_THROUGH(true, ssize_t, read, (int file, void* bytes, std::size_t count), (file, bytes, part(count)))
TARN_THROUGH(true, int, open64, (const char* path, int flags, mode_t mode), (path, flags, mode))
TARN_THROUGH(true, int, openat64, (int folder, const char* path, int flags, mode_t mode),
             (folder, path, flags, mode))
TARN_THROUGH(true, int, flock, (int file, int operation), (file, operation))
TARN_THROUGH(true, int, ftruncate64, (int file, std::int64_t size), (file, size))
TARN_THROUGH(false, std::int64_t, lseek64, (int file, std::int64_t to, int from), (file, to, from))
TARN_THROUGH(false, int, fstat64, (int file, void* status), (file, status))
TARN_THROUGH(false, int, stat64, (const char* path, void* status), (path, status))
TARN_THROUGH(false, int, fstatat64, (int folder, const char* path, void* status, int flags),
             (folder, path, status, flags))
TARN_THROUGH(false, int, fchmod, (int file, mode_t mode), (file, mode))
TARN_THROUGH(false, int, fchown, (int file, uid_t user, gid_t group), (file, user, group))
TARN_THROUGH(false, ssize_t, readlink, (const char* path, char* target, std::size_t room),
             (path, target, room))
TARN_THROUGH(false, int, renameat, (int a, const char* from, int b, const char* to), (a, from, b, to))
TARN_THROUGH(false, int, mkdir, (const char* path, mode_t mode), (path, mode))
TARN_THROUGH(false, int, mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode))
TARN_THROUGH(false, int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
ssize_t __real_write(int file, const void* bytes, std::size_t count);
ssize_t __wrap_write(int file, const void* bytes, std::size_t count) {
    return through("write", true, [&]() -> ssize_t {
        if (!calls.limited) return __real_write(file, bytes, part(count));
        if (calls.room == 0) return calls.fail(ENOSPC);
        const std::size_t written = std::min(count, calls.room);
        calls.room -= written;
        return __real_write(file, bytes, written);
    });
}
int __real_fsync(int file);
int __wrap_fsync(int file) {
    calls.synchronised.push_back(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file)));
    struct stat64 status {};
    __real_fstat64(file, &status);
    const char* const name = S_ISDIR(status.st_mode) ? "fsync of the folder" : "fsync";
    return through(name, true, [&] { return __real_fsync(file); });
}
int __real_fcntl64(int file, int command, struct flock64* lock);
int __wrap_fcntl64(int file, int command, struct flock64* lock) {
    const bool isLock = command == F_OFD_SETLK && lock->l_type == F_WRLCK;
    return through(isLock ? "lock" : "mark", isLock, [&] { return __real_fcntl64(file, command, lock); });
}
// The system closes a descriptor also where it reports a failure.
int __real_close(int file);
int __wrap_close(int file) {
    const int result = __real_close(file);
    return through("close", false, [&] { return result; });
}
}

namespace {

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

struct SystemCalls : tarntest::Families {
    tarnEngineData record;
    tarnIndexDataFile set;
    tarn::KeyedFile owner;
    tarnIniFile ini{"client"};
    tarnRegistry registry{HKEY_CURRENT_USER};

    // An operation that saves in one file.
    struct Saver {
        std::string name;
        std::string path;
        std::function<int()> save;
        bool keeps;  // a failure leaves the old content, not what was written until then
        std::string old = {};
    };
    const std::string whole = folder.file("whole");
    const std::string rows = folder.file("record");
    const std::string records = folder.file("set");
    const std::string text = folder.file("client.ini");
    const std::string keyed = folder.file("keyed");
    const std::string value = folder.file("tarnutil/registry/HKEY_CURRENT_USER/k-client/v-v");
    std::vector<Saver> savers{
        {"whole", whole, [this] { return writeFile(whole.c_str(), "twenty-four bytes of text", 24); }, false},
        {"record", rows, [this] { return record.saveData(rows.c_str()); }, false},
        {"set", records, [this] { return set.writeIndexDataFile(records.c_str()); }, false},
        {"ini", text, [this] { return ini.writeIniString("section", "key", "value"); }, true,
         "[other]\r\nkept=1\r\n[section]\r\nkey=old\r\n"},
        {"keyed", keyed, [this] { return owner.save(keyed) ? 1 : 0; }, true, "old"},
        {"registry", value, [this] { return registry.set("v", "value", 0); }, true}};

    SystemCalls() {
        ini.setIniFileDirectory(folder.path().c_str());
        registry.openKey("client", 1);
        registry.set("v", "old", 0);
        savers.back().old = tarntest::contentOf(value);
        const auto price = tarntest::text("21.5");
        for (std::int32_t row = 0; row < 3; ++row) record.storeMultiData(336, row, &price, 0);
        set.addIndexRecord(7, 0, 2);
        set.addDataRecord(7, 0, 1, "value");
        owner.set({7, 0}, 1, "value");
    }
    ~SystemCalls() override {
        std::fprintf(stderr, "%ld system calls have failed\n", calls.failed);
        calls = {};
    }

    // Does a piece of work with its first call failing, then with its second, until none is left to fail.
    template <class Work>
    static void failEach(int error, Work work) {
        long failedBefore = -1;
        for (long n = 1; failedBefore != calls.failed; ++n) {
            failedBefore = calls.failed;
            work([&](auto part) {
                calls.failAt(n, error);
                auto result = part();
                calls.failAt(0);
                return result;
            });
        }
    }
};

TEST_F(SystemCalls, HalfTransfersAndInterruptionsChangeTheAnswer) {
    for (const auto& family : tarntest::families) {
        const std::string expected = family.answer(1);
        tarntest::fill(folder.file("." + std::string(tarntest::longText) + ".ini.new"), "of a dead process");
        calls.grudging = true;
        EXPECT_EQ(family.answer(1), expected) << family.name;
        calls.grudging = false;
    }
}

TEST_F(SystemCalls, AnyThatFailsIsNotReportedOrLeavesAFileOpen) {
    for (const auto& family : tarntest::families) {
        const std::string expected = family.answer(1);
        const std::int32_t handles = tarn::openHandles();
        const std::ptrdiff_t descriptors = openDescriptors();
        failEach(EIO, [&](auto failing) {
            std::filesystem::remove_all(folder.file("tarnutil"));  // to be made again
            const std::string answer = failing([&] { return family.answer(1); });
            SCOPED_TRACE(family.name + (" " + calls.lastFailed));
            EXPECT_TRUE(answer == expected || answer == tarntest::reported) << answer;
            EXPECT_EQ(tarn::openHandles(), handles);
            EXPECT_EQ(openDescriptors(), descriptors);
            EXPECT_EQ(family.answer(1), expected);
        });
    }
}

TEST_F(SystemCalls, AWriteThatFailsAtAnyByteIsNotReported) {
    for (const Saver& saver : savers) {
        tarntest::fill(saver.path, saver.old);
        calls.limited = true;
        calls.room = 100000;
        EXPECT_EQ(saver.save(), 1) << saver.name;
        const std::size_t bytes = 100000 - calls.room;
        const std::string content = tarntest::contentOf(saver.path);
        EXPECT_GE(bytes, content.size());
        for (std::size_t room = 0; room < bytes; ++room) {
            SCOPED_TRACE(saver.name + std::to_string(room));
            tarntest::fill(saver.path, saver.old);
            calls.room = room;
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(saver.save(), 0);
            EXPECT_EQ(GetLastError(), saver.name == "registry" ? ERROR_SUCCESS : ERROR_DISK_FULL);
            EXPECT_EQ(tarntest::contentOf(saver.path),
                      saver.keeps ? saver.old : content.substr(0, std::min(room, content.size())));
        }
        calls.limited = false;
    }
}

// Whether a write may pass all the same.
bool isHarmless(const std::string& saver, const std::string& call, int error) {
    if (call == "fchown") return error == EPERM;
    if (call == "fsync of the folder") return error == EINVAL || error == ENOTSUP;
    // The registry's look whether a folder is in the way, and a move's whether a file is open; the folder of an
    // ini file, for its sync.
    if (call == "openat64") return saver == "registry" || saver == "keyed" || error == EACCES;
    if (call == "open64") return error == EACCES;  // it is opened for writing alone then
    const std::string_view always[] = {
        "close",             // behind the fsync
        "flock",    "mark",  // no sharing modes where there are no locks
        "readlink",          // no link
        "lseek64",  // the first of two asks for the position, and a file without the second is another
    };
    return std::count(std::begin(always), std::end(always), call) != 0;
}

TEST_F(SystemCalls, ACallThatFailsIsNotReportedOrLeavesNeitherTheOldContentNorTheNew) {
    for (const Saver& saver : savers) {
        if (!saver.keeps) continue;
        tarntest::fill(saver.path, saver.old);
        std::filesystem::permissions(saver.path, std::filesystem::perms{0755});  // which no new file has
        static_cast<void>(::chown(saver.path.c_str(), 1, 1));                    // where the test may
        EXPECT_EQ(saver.save(), 1);
        const std::string content = tarntest::contentOf(saver.path);
        const std::ptrdiff_t descriptors = openDescriptors();
        for (const int error : {EIO, EACCES, EPERM, EINVAL, ENOTSUP}) {
            failEach(error, [&](auto failing) {
                std::error_code exists;
                std::filesystem::create_symlink("nothing", folder.file(".client.ini.new"), exists);
                calls.lastFailed.clear();
                calls.log.clear();
                tarntest::fill(saver.path, saver.old);
                const int result = failing(saver.save);
                SCOPED_TRACE(saver.name + " " + calls.lastFailed + " " + std::to_string(error));
                const bool mayPass =
                    calls.lastFailed.empty() || isHarmless(saver.name, calls.lastFailed, error);
                EXPECT_LE(result, mayPass ? 1 : 0);
                if (calls.lastFailed.starts_with("fsync of")) {
                    EXPECT_EQ(result, mayPass ? 1 : 0);
                }
                const bool isReplaced = std::count(calls.log.begin(), calls.log.end(), "renameat") != 0;
                EXPECT_GE(isReplaced ? 1 : 0, result);
                EXPECT_EQ(tarntest::contentOf(saver.path), isReplaced ? content : saver.old);
                EXPECT_EQ(openDescriptors(), descriptors);
                EXPECT_EQ(saver.save(), 1);
                EXPECT_EQ(tarntest::contentOf(saver.path), content);
            });
        }
    }
}

TEST_F(SystemCalls, TheNewNameReachesTheDiskBeforeItsContent) {
    const auto stepsOf = [](auto save) {
        calls.log.clear();
        EXPECT_TRUE(save());
        std::erase_if(calls.log, [](const std::string& call) {
            return call != "write" && call != "renameat" && !call.starts_with("fsync");
        });
        return calls.log;
    };
    std::vector<std::string> expected{"write", "fsync", "renameat", "fsync of the folder"};
    EXPECT_EQ(stepsOf([&] { return ini.writeIniString("section", "key", "value") == 1; }), expected);
    expected.insert(expected.begin(), "write");  // the index is written again over itself
    EXPECT_EQ(stepsOf([&] { return static_cast<bool>(owner.save(keyed)); }), expected);
}

TEST_F(SystemCalls, AFlushReachesEveryFolderUpToTheOneThatWasThere) {
    const std::filesystem::path data = folder.path() / "new";
    tarntest::setEnvironment("XDG_DATA_HOME", data.c_str());
    tarnRegistry leaf(HKEY_CURRENT_USER);
    calls.synchronised.clear();
    EXPECT_EQ(leaf.openKey("Top\\Leaf", 1), 1);
    EXPECT_EQ(std::count(calls.synchronised.begin(), calls.synchronised.end(), folder.path()), 1)
        << "the folder in which the data folder was made";
    calls.synchronised.clear();
    EXPECT_EQ(leaf.flushKey(), 1);
    std::vector<std::filesystem::path> expected = {data / "tarnutil/registry/HKEY_CURRENT_USER/k-top/k-leaf"};
    while (expected.back() != data) expected.push_back(expected.back().parent_path());
    EXPECT_EQ(calls.synchronised, expected);
}

TEST_F(SystemCalls, ALockOfAnotherIsWaitedForWithoutEndOrNotAtAll) {
    const int foreign = ::open(folder.file(".client.ini.new").c_str(), O_RDWR | O_CREAT, 0600);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    ASSERT_EQ(::fcntl(foreign, F_OFD_SETLK, &lock), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ini.writeIniString("section", "key", "value"), 0);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    ::close(foreign);
}

}  // namespace
