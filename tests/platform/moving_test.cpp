// Files that get another name, go away or are written through: platform/files/moving.cpp and
// platform/files/replacement.cpp, and the system's own on Windows.

#include "tests/support.h"

namespace {

using namespace tarntest;

struct Moving : testing::Test {
    TemporaryFolder folder;
    std::string fresh = folder.file("fresh");
    std::string old = folder.file("old");

    Moving() {
        fill(fresh, "fresh");
        fill(old, "old");
        std::filesystem::create_directory(folder.file("folder"));
    }
};

HANDLE open(const std::string& name, DWORD access) {
    return CreateFileA(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                       nullptr);
}

TEST_F(Moving, AMoveThatIsRefusedChangesNothing) {
    const struct {
        std::string from, to;
        DWORD flags, code;
    } rows[] = {
        {folder.file("none"), old, MOVEFILE_REPLACE_EXISTING, ERROR_FILE_NOT_FOUND},
        {fresh, old, 0, ERROR_ALREADY_EXISTS},
        {fresh, folder.file("folder"), MOVEFILE_REPLACE_EXISTING, ERROR_ACCESS_DENIED},
        {fresh, old + '?', MOVEFILE_REPLACE_EXISTING, ERROR_INVALID_NAME},
    };
    for (const auto& each : rows) {
        EXPECT_EQ(MoveFileExA(each.from.c_str(), each.to.c_str(), each.flags), FALSE) << each.to;
        EXPECT_EQ(GetLastError(), each.code) << each.from << ' ' << each.to;
    }
    const HANDLE reader = open(old, GENERIC_READ);
    EXPECT_EQ(MoveFileExA(fresh.c_str(), old.c_str(), MOVEFILE_REPLACE_EXISTING), FALSE);
    CloseHandle(reader);
    EXPECT_EQ(contentOf(fresh), "fresh");
    EXPECT_EQ(contentOf(old), "old");
}

TEST_F(Moving, AFileAndAFolderGetTheirNewNames) {
    const DWORD through = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    EXPECT_EQ(MoveFileExA(fresh.c_str(), fresh.c_str(), 0), TRUE);
    EXPECT_EQ(MoveFileExA(fresh.c_str(), old.c_str(), through), TRUE);
    EXPECT_FALSE(std::filesystem::exists(fresh));
    EXPECT_EQ(MoveFileExA(folder.file("folder").c_str(), folder.file("other").c_str(), 0), TRUE);
    EXPECT_EQ(MoveFileExA(old.c_str(), folder.file("other/x").c_str(), MOVEFILE_WRITE_THROUGH), TRUE);
    EXPECT_EQ(contentOf(folder.file("other/x")), "fresh");
}

TEST_F(Moving, OnlyAFileThatIsntOpenIsDeleted) {
    const HANDLE reader = open(old, GENERIC_READ);
    EXPECT_EQ(DeleteFileA(old.c_str()), FALSE);
    EXPECT_EQ(FlushFileBuffers(reader), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(reader);
    const HANDLE writer = open(old, GENERIC_WRITE);
    EXPECT_EQ(FlushFileBuffers(writer), TRUE);
    CloseHandle(writer);
    EXPECT_EQ(contentOf(old), "old");
    EXPECT_EQ(DeleteFileA(old.c_str()), TRUE);
    EXPECT_EQ(DeleteFileA(old.c_str()), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

#if !defined(_WIN32)
TEST_F(Moving, TheReplacedFilesPermissionsStayAndALinkIsFollowed) {
    using std::filesystem::perms;
    const perms wanted = perms::owner_read | perms::owner_write | perms::group_read;
    std::filesystem::permissions(old, wanted);
    std::filesystem::create_symlink("old", folder.file("link"));
    EXPECT_EQ(MoveFileExA(fresh.c_str(), folder.file("link").c_str(), MOVEFILE_REPLACE_EXISTING), TRUE);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link")));
    EXPECT_EQ(contentOf(old), "fresh");
    EXPECT_EQ(std::filesystem::status(old).permissions(), wanted);
}
#endif

}  // namespace
