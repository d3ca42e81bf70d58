// Files, handles and sharing modes: platform/files.cpp, and the system's own on Windows.

#include <array>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "platform/host.h"
#endif

#include "platform/win32.h"
#include "tests/support.h"

namespace {

using tarntest::contentOf;

constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

struct Closer {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Opened = std::unique_ptr<void, Closer>;

bool isOpen(const Opened& file) {
    return file.get() != INVALID_HANDLE_VALUE;
}

Opened open(const std::string& name, DWORD access = GENERIC_READ, DWORD share = 0,
            DWORD creation = OPEN_EXISTING) {
    SetLastError(77);
    return Opened(
        CreateFileA(name.c_str(), access, share, nullptr, creation, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

class Files : public testing::Test {
  protected:
    tarntest::TemporaryFolder folder;
    std::string present = folder.file("present");
    DWORD count = 77;
    void SetUp() override {
        tarntest::fill(present, "content");
        std::filesystem::create_directory(folder.file("folder"));
    }

    // The 16 ways to open: the access in the lower two bits (1 read, 2 write), the share mode above.
    [[nodiscard]] Opened openAs(unsigned way) const {
        constexpr std::array<DWORD, 4> accesses{0, GENERIC_READ, GENERIC_WRITE, readWrite};
        return open(present, accesses[way & 3], way >> 2);
    }
    // Opens in all ways while `first` stands, and answers how many of them broke the rule.
    [[nodiscard]] int faultsBeside(unsigned first) const {
        int faults = 0;
        for (unsigned second = 0; second < 16; ++second) {
            const Opened guest = openAs(second);
            const bool agree = (first & 3 & ~(second >> 2)) == 0 && (second & 3 & ~(first >> 2)) == 0;
            const bool expected = (second & 3) == 0 || agree;  // an open without access takes no part
            const DWORD error = expected ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_SHARING_VIOLATION};
            faults += isOpen(guest) != expected || GetLastError() != error;
        }
        return faults;
    }
};

TEST_F(Files, EveryPairOfOpensIsShared) {
    for (const unsigned first : {1U, 2U, 3U, 5U, 6U, 7U, 9U, 10U, 11U, 13U, 14U, 15U}) {
        const Opened holder = openAs(first);
        EXPECT_EQ(faultsBeside(first), 0) << first;
    }
    EXPECT_TRUE(isOpen(open(present, readWrite, 0))) << "a refused or ended open left a mark";
}

TEST_F(Files, NeverTwoHoldersAtOnce) {
    std::atomic<int> inside{0}, together{0}, held{0};
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const Opened file = open(present, readWrite);
            if (!isOpen(file)) continue;
            if (inside.fetch_add(1) != 0) ++together;
            ++held;
            inside.fetch_sub(1);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(together, 0);
    EXPECT_GT(held, 0);
}

TEST_F(Files, OpeningAnswersByNameAndRule) {
    const struct {
        const char* name;
        DWORD access, creation;
        bool opens;
        DWORD error;
    } rows[] = {
        {"missing", GENERIC_READ, OPEN_EXISTING, false, ERROR_FILE_NOT_FOUND},
        {"nowhere\\file", GENERIC_READ, OPEN_EXISTING, false, ERROR_PATH_NOT_FOUND},
        {"nowhere\\file", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_PATH_NOT_FOUND},
        {"present\\below", GENERIC_READ, OPEN_EXISTING, false, ERROR_PATH_NOT_FOUND},
        {"folder", GENERIC_READ, OPEN_EXISTING, false, ERROR_ACCESS_DENIED},
        {"folder", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_ACCESS_DENIED},
        {"a?b", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_INVALID_NAME},
        {"present", GENERIC_WRITE, CREATE_NEW, false, ERROR_FILE_EXISTS},
        {"present", GENERIC_READ, 6, false, ERROR_INVALID_PARAMETER},
        {"present", GENERIC_WRITE, OPEN_ALWAYS, true, ERROR_ALREADY_EXISTS},
        {"present.", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder\\.\\..\\\\present ", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder/..//present", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder\\new", GENERIC_WRITE, CREATE_NEW, true, ERROR_SUCCESS},
        {"other", GENERIC_WRITE, OPEN_ALWAYS, true, ERROR_SUCCESS},
        {"third", GENERIC_READ, CREATE_ALWAYS, true, ERROR_SUCCESS},
        {"present", GENERIC_WRITE, CREATE_ALWAYS, true, ERROR_ALREADY_EXISTS},
    };
    for (const auto& row : rows) {
        const Opened file = open(folder.path().string() + "\\" + row.name, row.access, 0, row.creation);
        EXPECT_EQ(GetLastError(), row.error) << row.name << ' ' << row.creation;
        EXPECT_EQ(isOpen(file), row.opens) << row.name << ' ' << row.creation;
    }
    EXPECT_TRUE(std::filesystem::exists(folder.file("folder/new")));
    EXPECT_EQ(contentOf(present), "");
    EXPECT_FALSE(isOpen(open("")));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(Files, AHeldFileIsNotCutToNothing) {
    const Opened reader = open(present, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_FALSE(isOpen(open(present, GENERIC_WRITE, shareAll, CREATE_ALWAYS)));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(GetFileSize(reader.get(), nullptr), 7U);
}

TEST_F(Files, BytesAndPointerGoWhereTheyShould) {
    Opened file = open(present, readWrite);
    for (const std::string expected : {"", "content", ""}) {  // no bytes asked for, all, at the end
        char bytes[16];
        EXPECT_EQ(ReadFile(file.get(), bytes, count == 77 ? 0 : sizeof bytes, &count, nullptr), 1);
        EXPECT_EQ(std::string(bytes, count), expected);
    }
    const struct {
        LONG distance;
        DWORD method, answer, error;
    } rows[] = {
        {3, FILE_BEGIN, 3, 77},
        {2, FILE_CURRENT, 5, 77},
        {-1, FILE_BEGIN, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
        {-6, FILE_CURRENT, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
        {0, 9, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
        {0, FILE_CURRENT, 5, 77},  // kept
        {2, FILE_END, 9, 77},
    };
    for (const auto& row : rows) {
        SetLastError(77);
        EXPECT_EQ(SetFilePointer(file.get(), row.distance, nullptr, row.method), row.answer);
        EXPECT_EQ(GetLastError(), row.error) << row.distance << ' ' << row.method;
    }
    EXPECT_EQ(GetFileSize(file.get(), nullptr), 7U);
    EXPECT_EQ(WriteFile(file.get(), "xy", 2, &count, nullptr), 1);
    EXPECT_EQ(count, 2U);
    file.reset();
    EXPECT_EQ(contentOf(present), std::string("content\0\0xy", 11));
}

TEST_F(Files, SizesAndPositionsHaveTwoWords) {
    const Opened file = open(present, readWrite, 0, CREATE_ALWAYS);
    LONG high = 1;
    DWORD sizeHigh = 0;
    EXPECT_EQ(SetFilePointer(file.get(), 7, &high, FILE_BEGIN), 7U);
    ASSERT_EQ(WriteFile(file.get(), "x", 1, &count, nullptr), 1);
    EXPECT_EQ(GetFileSize(file.get(), &sizeHigh), 8U);
    EXPECT_EQ(sizeHigh, 1U);
    high = -1;
    EXPECT_EQ(SetFilePointer(file.get(), -9, &high, FILE_END), 0xFFFFFFFFU);  // a position, no failure
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(high, 0);
    high = -1;
    EXPECT_EQ(SetFilePointer(file.get(), -2, &high, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
}

TEST_F(Files, HandlesAllowWhatTheyWereOpenedForUntilTheyAreClosed) {
    char byte = 'x';
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}}) {
        Opened file = open(present, access);
        const HANDLE handle = file.get();
        const auto misuse = [&](bool reads) {
            count = 77;
            SetLastError(77);
            const BOOL result = reads ? ReadFile(handle, &byte, 1, &count, nullptr)
                                      : WriteFile(handle, &byte, 1, &count, nullptr);
            return result == 0 && count == 0 ? GetLastError() : 0;
        };
        EXPECT_EQ(misuse(access == GENERIC_WRITE), ERROR_ACCESS_DENIED);
        file.reset();
        EXPECT_EQ(misuse(true), ERROR_INVALID_HANDLE);
        EXPECT_EQ(misuse(false), ERROR_INVALID_HANDLE);
        EXPECT_EQ(GetFileSize(handle, nullptr), INVALID_FILE_SIZE);
        EXPECT_EQ(SetFilePointer(handle, 0, nullptr, FILE_END), INVALID_SET_FILE_POINTER);
        EXPECT_EQ(CloseHandle(handle), 0);
        EXPECT_EQ(CloseHandle(nullptr), 0);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        EXPECT_EQ(CloseHandle(INVALID_HANDLE_VALUE), 1);
    }
    EXPECT_EQ(contentOf(present), "content");
}

TEST(CurrentFolder, FitsOrTellsItsRoom) {
    char text[4096] = "untouched";
    const DWORD room = GetCurrentDirectoryA(0, nullptr);
    EXPECT_EQ(GetCurrentDirectoryA(room - 1, text), room);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(GetCurrentDirectoryA(room, text), room - 1);
    EXPECT_EQ(std::filesystem::path(text), std::filesystem::current_path());
}

// ------------------------------------------------------------------------------ what only this layer can
// show

#if defined(_WIN32)

TEST(FilesOfTheLayer, SkippedOnWindows) {
    GTEST_SKIP() << "second process by fork, devices, fifos and foreign locks";
}

#else

using FilesOfTheLayer = Files;

TEST_F(FilesOfTheLayer, SharingHoldsBetweenProcesses) {
    const auto inSecondProcess = [](auto work) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(work());
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    };
    for (const unsigned first : {1U, 2U, 3U, 5U, 6U, 7U, 9U, 10U, 11U, 13U, 14U, 15U}) {
        const Opened holder = openAs(first);
        EXPECT_EQ(inSecondProcess([&] { return faultsBeside(first); }), 0) << first;
    }
    ASSERT_EQ(inSecondProcess([&] { return openAs(3).release() == INVALID_HANDLE_VALUE ? 1 : 0; }), 0);
    EXPECT_TRUE(isOpen(openAs(3))) << "a process that ended left a mark";
}

TEST_F(FilesOfTheLayer, CuttingToNothingIsSharedLikeWriting) {
    const Opened reader = open(present, GENERIC_READ, FILE_SHARE_READ);
    EXPECT_FALSE(isOpen(open(present, GENERIC_READ, shareAll, CREATE_ALWAYS)));
    EXPECT_EQ(contentOf(present), "content");
}

TEST_F(FilesOfTheLayer, AForeignLockEndsInAnErrorNotInWaiting) {
    const int foreign = ::open(present.c_str(), O_RDONLY);
    ASSERT_EQ(::flock(foreign, LOCK_EX), 0);
    EXPECT_FALSE(isOpen(open(present)));
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    ::close(foreign);
    EXPECT_TRUE(isOpen(open(present)));
}

TEST_F(FilesOfTheLayer, DevicesAndFifosNeitherHangNorShare) {
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const Opened reader = open(fifo), writer = open(fifo, GENERIC_WRITE);
    char byte = 0;
    EXPECT_EQ(WriteFile(writer.get(), "x", 1, &count, nullptr), 1);
    EXPECT_EQ(ReadFile(reader.get(), &byte, 1, &count, nullptr), 1);
    EXPECT_EQ(byte, 'x');
    const Opened full = open("\\dev\\full", GENERIC_WRITE),
                 again = open("/dev/full", GENERIC_WRITE, 0, CREATE_ALWAYS);
    EXPECT_EQ(WriteFile(full.get(), "x", 1, &count, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_TRUE(isOpen(again));
}

// The system writes up to the limit and tells no error; only going on shows that the rest doesn't fit.
TEST_F(FilesOfTheLayer, AWriteThatStopsHalfwayHasFailed) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit limited{1000, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const Opened file = open(present, GENERIC_WRITE, 0, CREATE_ALWAYS);
    const BOOL result = WriteFile(file.get(), std::string(3000, 'x').data(), 3000, &count, nullptr);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(count, 1000U);
}

TEST_F(FilesOfTheLayer, HandlesAreCountedAndNotInherited) {
    const std::int32_t before = tarn::openHandles();
    Opened file = open(present);
    EXPECT_FALSE(isOpen(open(present)));
    EXPECT_EQ(tarn::openHandles(), before + 1);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry, gone) != std::filesystem::canonical(present)) continue;
        EXPECT_NE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
    }
    file.reset();
    EXPECT_EQ(CloseHandle(nullptr), 0);
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
