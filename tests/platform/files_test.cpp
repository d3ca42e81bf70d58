// Files, handles and sharing modes: platform/files/operations.cpp, and the system's own on Windows.

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

constexpr DWORD R = GENERIC_READ, W = GENERIC_WRITE;

using Opened = std::unique_ptr<void, decltype([](HANDLE handle) { CloseHandle(handle); })>;

bool isOpen(const Opened& file) {
    return file.get() != INVALID_HANDLE_VALUE;
}

Opened open(const std::string& name, DWORD access = R, DWORD share = 0, DWORD creation = OPEN_EXISTING) {
    SetLastError(77);
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
            EXPECT_EQ(GetLastError(), expected ? 0 : 32) << first << ' ' << second;
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

TEST_F(Files, NeverTwoHoldersAtOnce) {
    std::atomic<int> inside{0}, held{0};
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const Opened file = openAs(3);
            if (!isOpen(file)) continue;
            EXPECT_EQ(inside.fetch_add(1), 0);
            ++held;
            inside.fetch_sub(1);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_GT(held, 0);
}

TEST_F(Files, OpeningAnswersByNameAndRule) {
    // Name (_ for a blank), access, creation (1 new, 2 always, 3 existing, 4 open always), error.
    std::istringstream rows(
        R"(missing R 3 2  nowhere\file R 3 3  nowhere\file W 2 3  present\below R 3 3  folder R 3 5  folder W 2 5
        a?b W 2 123  present W 1 80  present R 6 87  present W 4 183  present. R 3 0  folder\.\..\\present_ R 3 0
        folder/..//present R 3 0  folder\new W 1 0  other W 4 0  third R 2 0  present W 2 183)");
    std::string name;
    char access = 0;
    for (DWORD creation = 0, error = 0; rows >> name >> access >> creation >> error;) {
        std::replace(name.begin(), name.end(), '_', ' ');
        const Opened file = open(folder.path().string() + "\\" + name, access == 'R' ? R : W, 0, creation);
        EXPECT_EQ(GetLastError(), error) << name << ' ' << creation;
        EXPECT_EQ(isOpen(file), error == 0 || error == 183) << name << ' ' << creation;
    }
    EXPECT_TRUE(std::filesystem::exists(folder.file("folder/new")));
    EXPECT_EQ(contentOf(present), "");
    EXPECT_TRUE(!isOpen(open("")) && GetLastError() == ERROR_PATH_NOT_FOUND);
}

TEST_F(Files, AHeldFileIsNotCutToNothing) {
    const Opened reader = open(present, R, FILE_SHARE_READ);
    for (const DWORD access : {W, onWindows ? W : R}) {  // the layer shares cutting like writing
        EXPECT_FALSE(isOpen(open(present, access, FILE_SHARE_READ | FILE_SHARE_WRITE, CREATE_ALWAYS)));
        EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
        EXPECT_EQ(GetFileSize(reader.get(), nullptr), 7U);
    }
}

TEST_F(Files, BytesAndPointerGoWhereTheyShould) {
    const Opened file = open(present, R | W);
    const auto read = [&](DWORD size) {
        char bytes[16];
        EXPECT_EQ(ReadFile(file.get(), bytes, size, &count, nullptr), 1);
        return std::string(bytes, count);
    };
    EXPECT_EQ(read(0) + read(16) + read(16), "content");
    EXPECT_EQ(GetFileSize(file.get(), nullptr), 7U);
    // Distance, its second word (9 for none), method, answer, error.  The last answer of -1 but one is a
    // position and no failure.
    std::istringstream rows(
        R"(3 9 0 3 77  2 9 1 5 77  -1 9 0 -1 131  -6 9 1 -1 131  0 9 9 -1 87  0 9 1 5 77  2 9 2 9 77
        7 1 0 7 0  -10 -1 2 -1 0  -2 -1 0 -1 131)");
    DWORD method = 0, error = 0;
    for (LONG distance = 0, high = 0, answer = 0; rows >> distance >> high >> method >> answer >> error;) {
        LONG* const second = high == 9 ? nullptr : &high;
        SetLastError(second == nullptr ? 77 : 0);
        EXPECT_EQ(SetFilePointer(file.get(), distance, second, method), static_cast<DWORD>(answer));
        EXPECT_EQ(GetLastError(), error) << distance << ' ' << method;
        EXPECT_TRUE(distance != -10 || high == 0);
        EXPECT_TRUE((answer != 7 && answer != 9) || WriteFile(file.get(), "xy", 2, &count, nullptr));
    }
    DWORD sizeHigh = 0;
    EXPECT_TRUE(GetFileSize(file.get(), &sizeHigh) == 9 && sizeHigh == 1 && count == 2);
    SetFilePointer(file.get(), 6, nullptr, FILE_BEGIN);
    EXPECT_EQ(read(6), std::string("t\0\0xy\0", 6));
}

TEST_F(Files, HandlesAllowWhatTheyWereOpenedForUntilTheyAreClosed) {
    for (const DWORD access : {R, W}) {
        Opened file = open(present, access);
        const HANDLE handle = file.get();
        char byte = 'x';
        const auto succeeds = [&](auto call) {
            count = 77;
            return call(handle, &byte, 1, &count, nullptr) || count != 0;
        };
        EXPECT_TRUE(!(access == W ? succeeds(ReadFile) : succeeds(WriteFile)) &&
                    GetLastError() == ERROR_ACCESS_DENIED);
        file.reset();
        EXPECT_FALSE(succeeds(ReadFile) || succeeds(WriteFile) || CloseHandle(handle) ||
                     CloseHandle(nullptr));
        EXPECT_TRUE(GetLastError() == ERROR_INVALID_HANDLE && CloseHandle(INVALID_HANDLE_VALUE));
        EXPECT_EQ(GetFileSize(handle, nullptr), INVALID_FILE_SIZE);
        EXPECT_EQ(SetFilePointer(handle, 0, nullptr, FILE_END), INVALID_SET_FILE_POINTER);
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

#if !defined(_WIN32)

TEST_F(Files, AForeignLockEndsInAnErrorNotInWaiting) {
    const int foreign = ::open(present.c_str(), O_RDONLY);
    ASSERT_EQ(::flock(foreign, LOCK_EX), 0);
    EXPECT_TRUE(!isOpen(open(present)) && GetLastError() == ERROR_SHARING_VIOLATION);
    ::close(foreign);
    EXPECT_TRUE(isOpen(open(present)));
}

TEST_F(Files, DevicesAndFifosNeitherHangNorShare) {
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const Opened reader = open(fifo), writer = open(fifo, W);
    char byte = 0;
    EXPECT_TRUE(WriteFile(writer.get(), "x", 1, &count, nullptr));
    EXPECT_TRUE(ReadFile(reader.get(), &byte, 1, &count, nullptr) && byte == 'x');
    const Opened full = open("\\dev\\full", W), again = open("/dev/full", W, 0, CREATE_ALWAYS);
    EXPECT_FALSE(WriteFile(full.get(), "x", 1, &count, nullptr));
    EXPECT_TRUE(GetLastError() == ERROR_DISK_FULL && isOpen(again));
}

TEST_F(Files, HandlesAreCountedAndNotInherited) {
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
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
