// Ini files as files: platform/profile/operations.cpp and platform/files/replacement.cpp, and the system's
// own on Windows.

#include "tests/platform/profile.h"
#include "tests/process.h"

#if !defined(_WIN32)
#include <fcntl.h>

#include "platform/files/replacement.h"
#endif

using namespace std::string_literals;
using tarntest::contentOf;
using tarntest::fill;
using tarntest::onWindows;
using tarntest::ProfileFiles;

namespace {

TEST_F(ProfileFiles, CutListsEndInTwoNulsWithinTheBuffer) {
    const std::string sections = "s\0t\0S\0"s, fallback = "abcdef";
    fill(file, "[s]\r\n[t]\r\n[S]\r\n");
    for (DWORD size = 0; size < 12; ++size) {
        SCOPED_TRACE(size);
        const bool isCut = size < sections.size() + 2;  // one byte more than it needs has to be there
        EXPECT_EQ(read(nullptr, nullptr, "", size),
                  isCut ? sections.substr(0, std::max<DWORD>(size, 2) - 2) : sections);
        if (!onWindows && isCut && size >= 2) {
            EXPECT_EQ(buffer.substr(size - 2, 2), "\0\0"s);
        }
        EXPECT_EQ(read("s", "none", "abcdef", size), fallback.substr(0, std::max<DWORD>(size, 1) - 1));
    }
}

TEST_F(ProfileFiles, StructuresOfAnotherSizeOrDamagedAreRefused) {
    std::string bytes = "\0\x01\x7F\x80\xFE\xFF"s;
    std::string back(8, '#');
    const std::string good = "00017F80FEFFFD";  // 0 + 1 + 7F + 80 + FE + FF = 2FD
    const auto isRead = [&](UINT size) {
        return GetPrivateProfileStructA("s", "k", back.data(), size, file.c_str()) != FALSE;
    };
    const auto written = [&](char* data, UINT size) {
        EXPECT_TRUE(WritePrivateProfileStructA("s", "k", data, size, file.c_str()));
        return read("s", "k");
    };
    EXPECT_EQ(written(bytes.data(), 0), "00");
    EXPECT_EQ(written(bytes.data(), 6), good);
    EXPECT_TRUE(isRead(6));
    EXPECT_EQ(back, bytes + "##");
    EXPECT_FALSE(isRead(5));
    EXPECT_FALSE(isRead(7));
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char* wrong : {"5", onWindows ? "" : "z", ""}) {
            write("s", "k", std::string(good).replace(i, 1, wrong).c_str());
            EXPECT_FALSE(isRead(6)) << i << wrong;
        }
    }
    write("s", "k", "00017f80fefffd");
    EXPECT_TRUE(isRead(6));
    EXPECT_EQ(written(nullptr, 6), "DEF");
}

TEST_F(ProfileFiles, AFileThatIsHeldReadsAsMissingAndIsNotWritten) {
    for (DWORD shared = 0; shared <= (FILE_SHARE_READ | FILE_SHARE_WRITE); ++shared) {
        SCOPED_TRACE(shared);
        fill(file, "[s]\r\nk=v\r\n");
        const HANDLE held =
            CreateFileA(file.c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr);
        const bool readable = (shared & FILE_SHARE_READ) != 0;
        EXPECT_EQ(read("s", "k"), readable ? "v" : "DEF");
        EXPECT_TRUE(readable || GetLastError() == ERROR_SHARING_VIOLATION);
        const bool written = write("s", "k", "w") != FALSE;
        EXPECT_EQ(written, shared == (FILE_SHARE_READ | FILE_SHARE_WRITE));
        EXPECT_TRUE(written || GetLastError() == ERROR_SHARING_VIOLATION);
        CloseHandle(held);
    }
}

#if !defined(_WIN32)

TEST_F(ProfileFiles, TwoWritersLoseNoLineOfEachOther) {
    const auto writer = [&](const char* key) {
        return tarntest::startChild([&] {
            for (int round = 0; round < 300; ++round) {
                const std::string value = std::to_string(round);
                EXPECT_TRUE(write("s", key, value.c_str()));
                EXPECT_EQ(read("s", key), value);
            }
        });
    };
    for (const pid_t child : {writer("one"), writer("two")}) EXPECT_EQ(tarntest::waitFor(child), 0);
}

TEST_F(ProfileFiles, AWriterKilledAtAnySystemCallLeavesOneOfTheTwoFilesAndNoLock) {
    for (const std::string& before : {"[s]\r\nk=old\r\n"s, ""s}) {
        int stops = 0;
        for (bool killed = true; killed; ++stops) {
            std::filesystem::remove(file);
            if (!before.empty()) fill(file, before);
            killed = tarntest::killedAtStop(stops, [&] { write("s", "k", "new"); });
            const std::string after = contentOf(file);
            EXPECT_TRUE(after == before || after == "[s]\r\nk=new\r\n") << stops << after;
            ASSERT_NE(write("s", "k", "again"), FALSE);
            EXPECT_EQ(contentOf(file), "[s]\r\nk=again\r\n");
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1)
                << "left over";
        }
        EXPECT_GT(stops, 20);
    }
}

TEST_F(ProfileFiles, LinksAndPermissionsStay) {
    const std::string target = folder.file("target.ini");
    fill(target, "[s]\r\n");
    std::filesystem::permissions(target, std::filesystem::perms{0640});
    std::filesystem::create_symlink("target.ini", file);
    static_cast<void>(::chown(target.c_str(), ::geteuid(), 1));  // where the test may
    struct stat former {};
    struct stat now {};
    ::stat(target.c_str(), &former);
    EXPECT_TRUE(write("s", "k", "v"));
    ::stat(target.c_str(), &now);
    EXPECT_EQ(now.st_gid, former.st_gid);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[s]\r\nk=v\r\n");
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms{0640});
}

// Former faults
TEST_F(ProfileFiles, WhatIsUnderTheTemporaryNameBlocksEveryWrite) {
    const std::string other = folder.file("other");
    const std::string name = folder.file(".x.ini.new");
    const auto expectWritten = [&](const char* besides) {
        EXPECT_TRUE(write("s", "k", besides)) << besides;
        EXPECT_EQ(read("s", "k"), besides);
    };
    fill(other, "kept");
    std::filesystem::create_symlink("other", name);
    expectWritten("link");
    std::filesystem::create_symlink("nothing", name);
    expectWritten("link to nothing");
    std::filesystem::create_hard_link(other, name);
    expectWritten("second name of a file");
    ::mkfifo(name.c_str(), 0600);
    expectWritten("pipe");
    std::filesystem::create_directory(name);
    expectWritten("empty folder");
    EXPECT_EQ(contentOf(other), "kept");
    EXPECT_FALSE(std::filesystem::exists(folder.file("nothing")));
    std::filesystem::create_directories(name + "/something");
    EXPECT_FALSE(write("s", "k", "v"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(std::filesystem::exists(name + "/something"));
}

TEST_F(ProfileFiles, AFileAtTheLimitIsRefusedOrOneAboveItRead) {
    std::string content;
    fill(file, std::string(20000, 'x'));  // more than is read at once
    EXPECT_EQ(tarn::readWhole(AT_FDCWD, file, 0, 19999, content), ERROR_FILE_CORRUPT);
    EXPECT_EQ(tarn::readWhole(AT_FDCWD, file, 0, 20000, content), ERROR_SUCCESS);
}

TEST_F(ProfileFiles, WhatIsNoFileNeitherHangsNorIsReplaced) {
    const std::string pipe = folder.file("pipe.ini");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& odd : {pipe, folder.path().string(), "/dev/zero"s, ""s, "/"s}) {
        file = odd;
        EXPECT_EQ(read("s", "k"), "DEF") << odd;
        EXPECT_FALSE(write("s", "k", "v")) << odd;
    }
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

#endif

}  // namespace
