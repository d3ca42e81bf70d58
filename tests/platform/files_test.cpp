// Files, handles and sharing modes: platform/files.cpp, and the system's own on Windows.

#include <array>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/host.h"
#endif

#include "platform/win32.h"
#include "tests/support.h"

namespace {

using tarntest::contentOf;
using tarntest::fill;

constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

class Files : public testing::Test {
  protected:
    // A handle that closes itself.
    class Opened {
      public:
        explicit Opened(HANDLE handle) : handle_(handle) {}
        ~Opened() {
            if (isOpen()) CloseHandle(handle_);
        }
        Opened(const Opened&) = delete;
        Opened& operator=(const Opened&) = delete;
        operator HANDLE() const { return handle_; }
        [[nodiscard]] bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

      private:
        HANDLE handle_;
    };

    static Opened open(const std::string& name, DWORD access = GENERIC_READ, DWORD share = 0,
                       DWORD creation = OPEN_EXISTING) {
        SetLastError(77);
        return Opened(
            CreateFileA(name.c_str(), access, share, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr));
    }

    tarntest::TemporaryFolder folder;
    std::string present = folder.file("present");
    void SetUp() override {
        fill(present, "content");
        std::filesystem::create_directory(folder.file("folder"));
    }
};

// The rule of sharing for the open number `second` while number `first` stands; a number holds the access of
// an open in its lower half (1 read, 2 write) and its share mode in the upper one.
constexpr std::array<DWORD, 4> accessOf{0, GENERIC_READ, GENERIC_WRITE, readWrite};
constexpr unsigned sharingNumbers = 16;
bool agree(unsigned first, unsigned second) {
    return (first & 3 & ~(second >> 2)) == 0 && (second & 3 & ~(first >> 2)) == 0;
}

TEST_F(Files, EveryPairOfOpensIsShared) {
    for (unsigned first = 0; first < sharingNumbers; ++first) {
        if ((first & 3) == 0) continue;
        const Opened holder = open(present, accessOf[first & 3], first >> 2);
        ASSERT_TRUE(holder.isOpen());
        for (unsigned second = 0; second < sharingNumbers; ++second) {
            const Opened guest = open(present, accessOf[second & 3], second >> 2);
            const bool takesPart = (second & 3) != 0;
            EXPECT_EQ(guest.isOpen(), !takesPart || agree(first, second)) << first << " then " << second;
            EXPECT_EQ(GetLastError(), guest.isOpen() ? DWORD{0} : ERROR_SHARING_VIOLATION);
        }
    }
}

TEST_F(Files, ARefusedOrEndedOpenLeavesNoMark) {
    { const Opened holder = open(present, readWrite, 0); }
    {
        const Opened reader = open(present, GENERIC_READ, FILE_SHARE_READ);
        EXPECT_FALSE(open(present, GENERIC_WRITE, 0).isOpen());
        EXPECT_TRUE(open(present, GENERIC_READ, FILE_SHARE_READ).isOpen());
    }
    EXPECT_TRUE(open(present, readWrite, 0).isOpen());
}

TEST_F(Files, NeverTwoHoldersAtOnce) {
    std::atomic<int> inside{0}, together{0}, held{0};
    const auto work = [&] {
        for (int i = 0; i < 500; ++i) {
            const Opened file(CreateFileA(present.c_str(), readWrite, 0, nullptr, OPEN_EXISTING, 0, nullptr));
            if (!file.isOpen()) continue;
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
        {"missing", GENERIC_WRITE, TRUNCATE_EXISTING, false, ERROR_FILE_NOT_FOUND},
        {"nowhere\\file", GENERIC_READ, OPEN_EXISTING, false, ERROR_PATH_NOT_FOUND},
        {"nowhere\\file", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_PATH_NOT_FOUND},
        {"present\\below", GENERIC_READ, OPEN_EXISTING, false, ERROR_PATH_NOT_FOUND},
        {"folder", GENERIC_READ, OPEN_EXISTING, false, ERROR_ACCESS_DENIED},
        {"folder", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_ACCESS_DENIED},
        {"a?b", GENERIC_WRITE, CREATE_ALWAYS, false, ERROR_INVALID_NAME},
        {"present", GENERIC_WRITE, CREATE_NEW, false, ERROR_FILE_EXISTS},
        {"present", GENERIC_READ, 0, false, ERROR_INVALID_PARAMETER},
        {"present", GENERIC_READ, 6, false, ERROR_INVALID_PARAMETER},
        {"present", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"present", GENERIC_WRITE, OPEN_ALWAYS, true, ERROR_ALREADY_EXISTS},
        {"present.", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"present ", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder\\.\\..\\\\present", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder/..//present", GENERIC_READ, OPEN_EXISTING, true, ERROR_SUCCESS},
        {"folder\\new", GENERIC_WRITE, CREATE_NEW, true, ERROR_SUCCESS},
        {"other", GENERIC_WRITE, OPEN_ALWAYS, true, ERROR_SUCCESS},
        {"third", GENERIC_READ, CREATE_ALWAYS, true, ERROR_SUCCESS},
        {"present", GENERIC_WRITE, CREATE_ALWAYS, true, ERROR_ALREADY_EXISTS},
    };
    for (const auto& row : rows) {
        const Opened file = open(folder.path().string() + "\\" + row.name, row.access, 0, row.creation);
        EXPECT_EQ(GetLastError(), row.error) << row.name << ' ' << row.creation;
        EXPECT_EQ(file.isOpen(), row.opens) << row.name << ' ' << row.creation;
    }
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "folder" / "new"));
    EXPECT_EQ(contentOf(present), "");
    EXPECT_FALSE(open("").isOpen());
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(Files, AHeldFileIsNotCutToNothing) {
    {
        const Opened reader = open(present, GENERIC_READ, FILE_SHARE_READ);
        EXPECT_FALSE(open(present, GENERIC_WRITE, shareAll, CREATE_ALWAYS).isOpen());
        EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    }
    EXPECT_EQ(contentOf(present), "content");
}

TEST_F(Files, BytesAndPointerGoWhereTheyShould) {
    char bytes[16] = "";
    DWORD count = 77;
    {
        const Opened file = open(present, readWrite);
        EXPECT_EQ(GetFileSize(file, nullptr), 7U);
        EXPECT_EQ(ReadFile(file, bytes, 0, &count, nullptr), 1);
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(ReadFile(file, bytes, sizeof bytes, &count, nullptr), 1);
        EXPECT_EQ(std::string(bytes, count), "content");
        EXPECT_EQ(ReadFile(file, bytes, sizeof bytes, &count, nullptr), 1);
        EXPECT_EQ(count, 0U);

        const struct {
            LONG distance;
            DWORD method, answer, error;
        } rows[] = {
            {3, FILE_BEGIN, 3, 77},
            {2, FILE_CURRENT, 5, 77},
            {-1, FILE_BEGIN, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
            {-6, FILE_CURRENT, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
            {-8, FILE_END, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
            {0, 9, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
            {0, FILE_CURRENT, 5, 77},
            {-2, FILE_END, 5, 77},
            {2, FILE_END, 9, 77},
        };
        for (const auto& row : rows) {
            SetLastError(77);
            EXPECT_EQ(SetFilePointer(file, row.distance, nullptr, row.method), row.answer);
            EXPECT_EQ(GetLastError(), row.error) << row.distance << ' ' << row.method;
        }
        EXPECT_EQ(GetFileSize(file, nullptr), 7U);
        EXPECT_EQ(WriteFile(file, "xy", 2, &count, nullptr), 1);
        EXPECT_EQ(count, 2U);
    }
    EXPECT_EQ(contentOf(present), std::string("content\0\0xy", 11));
}

TEST_F(Files, SizesAndPositionsHaveTwoWords) {
    const Opened file = open(present, readWrite, 0, CREATE_ALWAYS);
    LONG high = 1;
    DWORD count = 0, sizeHigh = 0;
    EXPECT_EQ(SetFilePointer(file, 7, &high, FILE_BEGIN), 7U);
    ASSERT_EQ(WriteFile(file, "x", 1, &count, nullptr), 1);
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 8U);
    EXPECT_EQ(sizeHigh, 1U);
    high = -1;
    EXPECT_EQ(SetFilePointer(file, -9, &high, FILE_END), 0xFFFFFFFFU);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(high, 0);
    high = -1;
    EXPECT_EQ(SetFilePointer(file, -2, &high, FILE_BEGIN), INVALID_SET_FILE_POINTER);
    EXPECT_EQ(GetLastError(), ERROR_NEGATIVE_SEEK);
    EXPECT_EQ(high, -1);
}

TEST_F(Files, HandlesAllowWhatTheyWereOpenedFor) {
    char byte = 'x';
    DWORD count = 77;
    const Opened reader = open(present, GENERIC_READ, shareAll);
    EXPECT_EQ(WriteFile(reader, &byte, 1, &count, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(count, 0U);
    const Opened writer = open(present, GENERIC_WRITE, shareAll);
    count = 77;
    EXPECT_EQ(ReadFile(writer, &byte, 1, &count, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(contentOf(present), "content");
}

TEST_F(Files, AClosedHandleIsInvalidEverywhere) {
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}}) {
        const HANDLE closed = CreateFileA(present.c_str(), access, 0, nullptr, OPEN_EXISTING,
                                          FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        ASSERT_EQ(CloseHandle(closed), 1);
        char byte = 0;
        DWORD count = 0;
        const auto isInvalid = [](bool failed) {
            const bool result = failed && GetLastError() == ERROR_INVALID_HANDLE;
            SetLastError(0);
            return result;
        };
        EXPECT_TRUE(isInvalid(ReadFile(closed, &byte, 1, &count, nullptr) == 0));
        EXPECT_TRUE(isInvalid(WriteFile(closed, &byte, 0, &count, nullptr) == 0));
        EXPECT_TRUE(isInvalid(GetFileSize(closed, nullptr) == INVALID_FILE_SIZE));
        EXPECT_TRUE(isInvalid(SetFilePointer(closed, 0, nullptr, FILE_END) == INVALID_SET_FILE_POINTER));
        EXPECT_TRUE(isInvalid(CloseHandle(closed) == 0));
        EXPECT_TRUE(isInvalid(CloseHandle(nullptr) == 0));
        EXPECT_EQ(CloseHandle(INVALID_HANDLE_VALUE), 1);
    }
}

TEST_F(Files, TheCurrentFolderFitsOrTellsItsRoom) {
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

// Runs `work` in a second process and answers the number that it ends with.
template <typename Work>
int inSecondProcess(Work work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

using FilesOfTheLayer = Files;

TEST_F(FilesOfTheLayer, SharingHoldsBetweenProcesses) {
    for (unsigned first = 0; first < sharingNumbers; ++first) {
        if ((first & 3) == 0) continue;
        const Opened holder = open(present, accessOf[first & 3], first >> 2);
        const int agreed = inSecondProcess([&] {
            int count = 0;
            for (unsigned second = 0; second < sharingNumbers; ++second) {
                if ((second & 3) == 0) continue;
                const Opened guest = open(present, accessOf[second & 3], second >> 2);
                count += guest.isOpen() == agree(first, second);
            }
            return count;
        });
        EXPECT_EQ(agreed, 12) << first;
    }
    // A process that ends without closing leaves nothing behind.
    EXPECT_EQ(inSecondProcess([&] {
                  return CreateFileA(present.c_str(), readWrite, 0, nullptr, OPEN_EXISTING, 0, nullptr) !=
                         INVALID_HANDLE_VALUE;
              }),
              1);
    EXPECT_TRUE(open(present, readWrite, 0).isOpen());
}

TEST_F(FilesOfTheLayer, AForeignLockEndsInAnErrorNotInWaiting) {
    const int foreign = ::open(present.c_str(), O_RDONLY);
    ASSERT_EQ(::flock(foreign, LOCK_EX), 0);
    EXPECT_FALSE(open(present).isOpen());
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    ::close(foreign);
    EXPECT_TRUE(open(present).isOpen());
}

TEST_F(FilesOfTheLayer, DevicesAndFifosNeitherHangNorShare) {
    const std::string fifo = folder.file("fifo");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    char byte = 0;
    DWORD count = 77;
    {
        const Opened reader = open(fifo);
        const Opened writer = open(fifo, GENERIC_WRITE);
        EXPECT_EQ(WriteFile(writer, "x", 1, &count, nullptr), 1);
        EXPECT_EQ(ReadFile(reader, &byte, 1, &count, nullptr), 1);
        EXPECT_EQ(byte, 'x');
    }
    const Opened full = open("\\dev\\full", GENERIC_WRITE);
    const Opened fullAgain = open("/dev/full", GENERIC_WRITE, 0, CREATE_ALWAYS);
    EXPECT_EQ(WriteFile(full, "x", 1, &count, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(count, 0U);
    EXPECT_TRUE(fullAgain.isOpen());
}

TEST_F(FilesOfTheLayer, HandlesAreCountedAndNotInherited) {
    const std::int32_t before = tarn::openHandles();
    {
        const Opened file = open(present);
        EXPECT_FALSE(open(present).isOpen());
        EXPECT_EQ(tarn::openHandles(), before + 1);
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            if (std::filesystem::read_symlink(entry, gone) != std::filesystem::canonical(present)) continue;
            EXPECT_NE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
        }
    }
    EXPECT_EQ(tarn::openHandles(), before);
    EXPECT_EQ(CloseHandle(nullptr), 0);
    EXPECT_EQ(tarn::openHandles(), before);
}

#endif

}  // namespace
