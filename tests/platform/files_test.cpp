// Files, handles and sharing modes: platform/files/operations.cpp, platform/files/path.cpp and
// platform/files/sharing.cpp, and the system's own on Windows.

#include <atomic>
#include <thread>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/file.h>

#include "tests/process.h"
#endif

#include "tests/support.h"

namespace {

using namespace tarntest;

constexpr DWORD R = GENERIC_READ;
constexpr DWORD W = GENERIC_WRITE;
constexpr DWORD before = 77;  // the last error in front of a call

using Opened = std::unique_ptr<void, decltype([](HANDLE handle) { CloseHandle(handle); })>;

bool isOpen(const Opened& file) {
    return file.get() != INVALID_HANDLE_VALUE;
}

Opened open(const std::string& name, DWORD access = R, DWORD share = 0, DWORD creation = OPEN_EXISTING) {
    SetLastError(before);
    return Opened(
        CreateFileA(name.c_str(), access, share, nullptr, creation, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

struct Files : testing::Test {
    TemporaryFolder folder;
    std::string present = folder.file("present");
    DWORD count = 77;

    Files() {
        fill(present, "content");
        std::filesystem::create_directory(folder.file("folder"));
    }

    // The 16 ways to open: the access in the lower two bits (1 read, 2 write), the share mode above.
    [[nodiscard]] Opened openAs(unsigned way) const {
        return open(present, ((way & 1) != 0 ? R : 0) | ((way & 2) != 0 ? W : 0), way >> 2);
    }
    void expectTheRuleBeside(unsigned first) const {
        for (unsigned second = 0; second < 16; ++second) {
            const Opened guest = openAs(second);
            const bool agree = (first & 3 & ~(second >> 2)) == 0 && (second & 3 & ~(first >> 2)) == 0;
            const bool expected = (second & 3) == 0 || agree;  // an open without access takes no part
            EXPECT_EQ(isOpen(guest), expected) << first << ' ' << second;
            EXPECT_EQ(GetLastError(), expected ? ERROR_SUCCESS : ERROR_SHARING_VIOLATION)
                << first << ' ' << second;
        }
    }
};

TEST_F(Files, EveryPairOfOpensIsShared) {
    for (unsigned first = 0; first < 16; ++first) {
        if ((first & 3) == 0) continue;
        const Opened holder = openAs(first);
        expectTheRuleBeside(first);
#if !defined(_WIN32)
        const auto inChild = [&] {
            expectTheRuleBeside(first);
            static_cast<void>(openAs(first | 12).release());
        };
        EXPECT_EQ(waitFor(startChild(inChild)), 0);
#endif
    }
    EXPECT_TRUE(isOpen(openAs(3))) << "a refused or ended open left a mark";
}

TEST_F(Files, OpeningAnswersByNameAndRule) {
    const struct {
        const char* name;
        DWORD access;
        DWORD creation;
        DWORD error;
    } rows[] = {
        {"missing", R, OPEN_EXISTING, ERROR_FILE_NOT_FOUND},
        {"nowhere\\file", W, CREATE_ALWAYS, ERROR_PATH_NOT_FOUND},
        {"present\\below", R, OPEN_EXISTING, ERROR_PATH_NOT_FOUND},
        {"folder", R, OPEN_EXISTING, ERROR_ACCESS_DENIED},
        {"a?b", W, CREATE_ALWAYS, ERROR_INVALID_NAME},
        {"present", W, CREATE_NEW, ERROR_FILE_EXISTS},
        {"present", R, TRUNCATE_EXISTING + 1, ERROR_INVALID_PARAMETER},
        {"present", W, OPEN_ALWAYS, ERROR_ALREADY_EXISTS},
        {"folder/.\\..\\/present. ", R, OPEN_EXISTING, ERROR_SUCCESS},
        {"folder\\new", W, CREATE_NEW, ERROR_SUCCESS},
        {"other", R, CREATE_ALWAYS, ERROR_SUCCESS},
        {"present", W, CREATE_ALWAYS, ERROR_ALREADY_EXISTS},
    };
    for (const auto& each : rows) {
        SCOPED_TRACE(each.name);
        const Opened file = open(folder.path().string() + "\\" + each.name, each.access, 0, each.creation);
        EXPECT_EQ(GetLastError(), each.error);
        EXPECT_EQ(isOpen(file), each.error == ERROR_SUCCESS || each.error == ERROR_ALREADY_EXISTS);
    }
    EXPECT_TRUE(std::filesystem::exists(folder.file("folder/new")));
    EXPECT_EQ(contentOf(present), "");
    EXPECT_FALSE(isOpen(open("")));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(Files, BytesAndPointerAreAtAnotherPlace) {
    const Opened file = open(present, R | W);
    const auto read = [&](DWORD size) {
        char bytes[16];
        EXPECT_TRUE(ReadFile(file.get(), bytes, size, &count, nullptr));
        return std::string(bytes, count);
    };
    EXPECT_EQ(read(16), "content");
    EXPECT_EQ(read(16), "");
    const std::int64_t refused = -1;
    const std::int64_t fourGiB = std::int64_t{1} << 32;
    const struct {
        std::int64_t distance;
        bool isFar;  // with the second word of the distance
        DWORD method;
        std::int64_t answer;
        DWORD error;
    } rows[] = {
        {3, false, FILE_BEGIN, 3, before},
        {2, false, FILE_CURRENT, 5, before},
        {-1, false, FILE_BEGIN, refused, ERROR_NEGATIVE_SEEK},
        {-6, false, FILE_CURRENT, refused, ERROR_NEGATIVE_SEEK},
        {-fourGiB - 2, true, FILE_BEGIN, refused, ERROR_NEGATIVE_SEEK},
        {0, false, 9, refused, ERROR_INVALID_PARAMETER},
        {2, false, FILE_END, 9, before},
        {fourGiB - 1, true, FILE_BEGIN, fourGiB - 1, ERROR_SUCCESS},  // looks like a refusal
        {8, true, FILE_CURRENT, fourGiB + 7, before},
        {2 * fourGiB + 7, true, FILE_BEGIN, 2 * fourGiB + 7, before},
    };
    for (const auto& each : rows) {
        SCOPED_TRACE(each.distance);
        SetLastError(before);
        auto high = static_cast<LONG>(each.distance >> 32);
        EXPECT_EQ(SetFilePointer(file.get(), static_cast<LONG>(each.distance), each.isFar ? &high : nullptr,
                                 each.method),
                  static_cast<DWORD>(each.answer));
        EXPECT_EQ(GetLastError(), each.error);
        EXPECT_EQ(high, (each.answer == refused ? each.distance : each.answer) >> 32);
    }
    EXPECT_EQ(GetFileSize(file.get(), nullptr), 7U) << "the pointer alone makes no file longer";
    EXPECT_TRUE(WriteFile(file.get(), "xy", 2, &count, nullptr));
    EXPECT_EQ(count, 2U);
    DWORD sizeHigh = 0;
    EXPECT_EQ(GetFileSize(file.get(), &sizeHigh), 9U);
    EXPECT_EQ(sizeHigh, 2U);
    SetFilePointer(file.get(), 5, nullptr, FILE_BEGIN);
    EXPECT_EQ(read(4), std::string("nt\0\0", 4));
}

TEST_F(Files, HandlesAllowMoreThanTheyWereOpenedForOrLongerThanTheyAreOpen) {
    for (const DWORD access : {R, W}) {
        Opened file = open(present, access);
        const HANDLE handle = file.get();
        char byte = 'x';
        const auto expectRefusal = [&](auto call, DWORD error) {
            count = 77;
            EXPECT_FALSE(call(handle, &byte, 1, &count, nullptr));
            EXPECT_EQ(count, 0U);
            EXPECT_EQ(GetLastError(), error);
        };
        if (access == W) expectRefusal(ReadFile, ERROR_ACCESS_DENIED);
        if (access == R) expectRefusal(WriteFile, ERROR_ACCESS_DENIED);
        file.reset();
        expectRefusal(ReadFile, ERROR_INVALID_HANDLE);
        EXPECT_FALSE(CloseHandle(handle));
        EXPECT_EQ(GetFileSize(handle, nullptr), INVALID_FILE_SIZE);
        EXPECT_TRUE(CloseHandle(INVALID_HANDLE_VALUE)) << "the process's own handle";
    }
    EXPECT_EQ(contentOf(present), "content");
}

TEST(CurrentFolder, IsWrittenBehindItsRoom) {
    char text[4096] = "untouched";
    const DWORD room = GetCurrentDirectoryA(0, nullptr);
    EXPECT_EQ(GetCurrentDirectoryA(room - 1, text), room);
    EXPECT_STREQ(text, "untouched");
    EXPECT_EQ(GetCurrentDirectoryA(room, text), room - 1);
    EXPECT_EQ(std::filesystem::path(text), std::filesystem::current_path());
}

#if !defined(_WIN32)

TEST_F(Files, DevicesAndFifosNeitherHangNorShare) {
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const Opened reader = open(fifo);
    const Opened writer = open(fifo, W);
    char byte = 0;
    EXPECT_TRUE(WriteFile(writer.get(), "x", 1, &count, nullptr));
    EXPECT_TRUE(ReadFile(reader.get(), &byte, 1, &count, nullptr));
    EXPECT_EQ(byte, 'x');
    const Opened full = open("\\dev\\full", W);
    EXPECT_TRUE(isOpen(open("/dev/full", W, 0, CREATE_ALWAYS)));
    EXPECT_FALSE(WriteFile(full.get(), "x", 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
}

#endif

}  // namespace
