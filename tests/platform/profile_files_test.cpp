// Ini files: platform/profile_files.cpp, profile_text.cpp, profile_encoding.cpp and atomic_file.cpp, and the
// system's own on Windows.

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include <sys/stat.h>

#include "platform/profile_text.h"
#include "platform/sha256.h"
#include "tests/process.h"
#endif

using namespace std::string_literals;
using tarntest::contentOf;
using tarntest::fill;
using tarntest::onWindows;

namespace {

// Whether a row of a table holds on every Win32 or is the layer's alone, where the tested Windows differs.
enum Where { everywhere, here };
bool skips(Where where) {
    return onWindows && where == here;
}

struct ProfileFiles : testing::Test {
    tarntest::TemporaryFolder folder{tarntest::inMemory};
    std::string file = folder.file("x.ini");

    std::string read(const char* section, const char* key, const char* fallback = "DEF", DWORD size = 200) {
        std::string buffer(200, '#');
        const DWORD count =
            GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, file.c_str());
        EXPECT_TRUE(size == 0 || buffer[count] == '\0');
        EXPECT_EQ(buffer.find_first_not_of('#', size), std::string::npos) << "written behind the buffer";
        return buffer.substr(0, count);
    }
    BOOL write(const char* section, const char* key, const char* text) {
        return WritePrivateProfileStringA(section, key, text, file.c_str());
    }
};

TEST_F(ProfileFiles, ReadsWhatRealFilesHold) {
    fill(
        file,
        "[Sec] junk\r\nKey=v\r\n \tb \t= \t v \t\r\nq=\"  in  \"\r\nr=' x "
        "'\r\nd=\"\"a\"\"\r\nh=\"abc\r\ni=\"a\" b\r\n"
        "j=\"a'\r\nl=\"\r\nm=a;b#c=d\r\n#k=1\r\n=empty\r\nab=1\r\na=2\r\na=3\r\na=b=c\r\n\xE9=1\r\n\xC9=2\r\n"
        "none\r\n[SEC]\r\nother=1\r\n");
    const char* const keys[] = {"kEY ", "v",     "\tb",  "v",       "q",     "  in  ",  "r",    " x ",
                                "d",    "\"a\"", "h",    "\"abc",   "i",     "\"a\" b", "j",    "\"a'",
                                "l",    "\"",    "m",    "a;b#c=d", "#k",    "1",       "",     "empty",
                                "a",    "2",     "a=b",  "DEF",     "\xE9",  "1",       "\xC9", "2",
                                "ab",   "1",     "none", "DEF",     "other", "DEF"};
    for (std::size_t i = 0; i < std::size(keys); i += 2)
        EXPECT_EQ(read(" sEC ", keys[i]), keys[i + 1]) << keys[i];
    const struct {
        std::string text;
        const char *section, *key, *value;
        Where where = everywhere;
    } rows[] = {
        {"[s]\nk=v", "s", "k", "v"},
        {"[s]\rk=1\r[t]\rk=2\r", "t", "k", "2"},
        {" [ s ]\r\nk=v\r\n", "s", "k", "v"},
        {"[a]b] c\r\nk=1\r\n", "a]b", "k", "1"},
        {"[s]\r\n;k=1\r\n", "s", ";k", "DEF", here},
        {"[s]\r\nk\r\nk=1\r\n", "s", "k", "1", here},
        {"[broken\r\nk=1\r\n", "broken", "k", "1", here},
        {"[]\r\nk=1\r\n", "", "k", "1", here},
        {"k=0\r\n[s]\r\nk=1\r\n", "", "k", "DEF", here},
        {"\xEF\xBB\xBF[s]\r\nk=1\r\n", "s", "k", "1"},
        {"\xFF\xFE[\0s\0]\0\n\0k\0=\0\xE9\0\xAC\x20\x00\x04\n\0"s, "s", "k", "\xE9\x80?"},
    };
    for (const auto& row : rows) {
        if (skips(row.where)) continue;
        fill(file, row.text);
        EXPECT_EQ(read(row.section, row.key), row.value) << row.text;
    }
}

TEST_F(ProfileFiles, NumbersEndAtTheFirstCharacterThatIsNone) {
    const char* const rows[] = {"12abc",      "12", "-5",         "-5",          "+5",          "5",
                                " 7 ",        "7",  "\"8\"",      "8",           "010",         "10",
                                "abc",        "0",  "--5",        "0",           "- 5",         "0",
                                "1e3",        "1",  "3.9",        "3",           "0x1F",        "31",
                                "0X1f",       "0",  "-0x10",      "-16",         "0b101",       "5",
                                "0o17",       "15", "",           "-42",         "\"\"",        "-42",
                                "4294967296", "0",  "4294967297", "1",           "-4294967297", "-1",
                                "4294967295", "-1", "2147483648", "-2147483648", "99999999999", "1215752191"};
    const auto number = [&](const char* key) {
        return std::to_string(static_cast<int>(GetPrivateProfileIntA("s", key, -42, file.c_str())));
    };
    for (std::size_t i = 0; i < std::size(rows); i += 2) {
        fill(file, "[s]\r\nk="s + rows[i] + "\r\n");
        EXPECT_EQ(number("k"), rows[i + 1]) << rows[i];
    }
    EXPECT_EQ(number("other"), "-42");
}

TEST_F(ProfileFiles, MissingThingsGiveTheDefaultWithoutBlanksAndQuotes) {
    const struct {
        const char *fallback, *value;
    } rows[] = {{"  d  ", "  d"}, {"\"q\"", "q"}, {"'q' ", "q"}, {nullptr, ""}, {"d\t", "d\t"}};
    for (const auto& row : rows) EXPECT_EQ(read("s", "k", row.fallback), row.value);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(read(nullptr, nullptr), "");
    file = folder.file("none") + "\\x.ini";
    EXPECT_EQ(read("s", "k"), "DEF");
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(write("s", "k", "v"), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
}

TEST_F(ProfileFiles, CutListsEndInTwoNulsWithinTheBuffer) {
    fill(file, "[s]\r\nab=1\r\nab=2\r\n;c=3\r\nx\r\n[t]\r\n[S]\r\n");
    EXPECT_EQ(read("s", nullptr), "ab\0ab\0"s);
    EXPECT_EQ(read("t", nullptr), "DEF");
    EXPECT_EQ(read("none", nullptr), "DEF");
    const std::string sections = "s\0t\0S\0"s;
    EXPECT_EQ(read(nullptr, "ignored"), sections);
    for (DWORD size = 0; size < 12; ++size) {
        char buffer[12] = "###########";
        const DWORD count = GetPrivateProfileStringA(nullptr, nullptr, "", buffer, size, file.c_str());
        const DWORD expected = size < 2 ? 0 : size < sections.size() + 2 ? size - 2 : 6;
        EXPECT_EQ(count, expected) << size;
        EXPECT_EQ(sections.compare(0, count, buffer, count), 0) << size;
        const std::size_t ending = count < sections.size() ? 2 : 1;
        EXPECT_TRUE(size < 2 || onWindows ||
                    std::string(buffer + count, ending) == "\0\0"s.substr(0, ending));
        EXPECT_EQ(buffer[std::min<DWORD>(size, 10)], size < 9 ? '#' : buffer[10]) << size;
    }
    EXPECT_EQ(read("s", "ab", "", 1), "");
    EXPECT_EQ(read("s", "none", "abc", 3), "ab");
    EXPECT_EQ(read("s", "none", "abc", 0), "");
}

TEST_F(ProfileFiles, WritesChangeOneLineAndNoOther) {
    const std::string mixed = "; top\n[s]\n\na = 1\n\n ;c\r\nB=2  \r\n\n[t]\r\n";
    const struct {
        std::string before;
        const char *section, *key, *text;
        std::string after;
        Where where = everywhere;
    } rows[] = {
        {"", "s", "k", "v", "[s]\r\nk=v\r\n"},
        {"[S]\r\nKey=1\r\n", "s", "kEY", "2", "[S]\r\nKey=2\r\n"},
        {"[s]\r\na=1\r\n;c\r\n[t]\r\n", "s", "b", "2", "[s]\r\na=1\r\n;c\r\nb=2\r\n[t]\r\n"},
        {"[s]\r\na=1", "s", "b", "2", "[s]\r\na=1\r\nb=2\r\n"},
        {"[s]\r\na=1", "t", "b", "2", "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
        {"[s]\r\nk=1\r\nk=2\r\n", "s", "k", "3", "[s]\r\nk=3\r\nk=2\r\n"},
        {"[s]\r\nk\r\nk=1\r\n", "s", "k", "3", "[s]\r\nk=3\r\nk=1\r\n"},
        {"[s]\r\n", "s", "k", "", "[s]\r\nk=\r\n"},
        {"[s]\r\n", "s", "k", "\" v \"", "[s]\r\nk=\" v \"\r\n"},
        {"[s]\r\n", "s", "", "v", "[s]\r\n=v\r\n"},
        {"[s]\r\n", "s", "k", "\n", "[s]\r\nk=\n\r\n", here},
        {"[s]\r\n", " q ", " k ", " v ", "[s]\r\n[q]\r\nk= v \r\n", here},
        {"[s]\r\nk=  v \r\n", "s", "k", " w ", "[s]\r\nk= w \r\n", here},
        {"[s]\r\n", "", "k", "v", "[s]\r\n[]\r\nk=v\r\n", here},
        {"[s]\r\nk=1\r\nk=2\r\n", "s", "K", nullptr, "[s]\r\nk=2\r\n"},
        {"[s]\r\nk=1\r\n", "s", "other", nullptr, "[s]\r\nk=1\r\n"},
        {"[s]\r\nk=1\r\n[t]\r\nk=2\r\n[s]\r\n", "s", nullptr, "ignored", "[t]\r\nk=2\r\n[s]\r\n"},
        {"[t]\r\n[s]\r\nk=1\r\n ;c\r\n\r\nx\r\n", "s", nullptr, nullptr, "[t]\r\n ;c\r\n\r\n", here},
        {mixed, "s", "A", "9", "; top\n[s]\n\na = 9\n\n ;c\r\nB=2  \r\n\n[t]\r\n", here},
        {mixed, "s", "b", "9", "; top\n[s]\n\na = 1\n\n ;c\r\nB=9  \r\n\n[t]\r\n", here},
        {mixed, "s", "n", "9", "; top\n[s]\n\na = 1\n\n ;c\r\nB=2  \r\nn=9\n\n[t]\r\n", here},
        {mixed, "s", "a", nullptr, "; top\n[s]\n\n\n ;c\r\nB=2  \r\n\n[t]\r\n", here},
        {"[s]\rk=1\r", "s", "n", "2", "[s]\rk=1\rn=2\r", here},
        {"\xEF\xBB\xBF[s]\r\n", "s", "k", "v", "\xEF\xBB\xBF[s]\r\nk=v\r\n", here},
        {"\xFF\xFE\x00\xD8[\0s\0]\0\n\0"s, "s", "\x80", "\xE9",
         "\xFF\xFE\x00\xD8[\0s\0]\0\n\0[\0s\0]\0\n\0\xAC\x20=\0\xE9\0\n\0"s, here},
    };
    for (const auto& row : rows) {
        if (skips(row.where)) continue;
        fill(file, row.before);
        EXPECT_NE(write(row.section, row.key, row.text), FALSE);
        EXPECT_EQ(contentOf(file), row.after) << row.before;
    }
}

TEST_F(ProfileFiles, NothingToChangeLeavesTheFileAlone) {
    EXPECT_NE(write("s", "k", nullptr), FALSE);
    EXPECT_NE(write("s", nullptr, nullptr), FALSE);
    EXPECT_EQ(write(nullptr, "k", "v"), FALSE);
    EXPECT_EQ(write(nullptr, nullptr, nullptr), FALSE);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    fill(file, "[s]\r\nk=v\r\n");
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(5);
    std::filesystem::last_write_time(file, old);
    const auto before = std::filesystem::last_write_time(file);
    EXPECT_NE(write("s", "K", "v"), FALSE);
    EXPECT_NE(write("s", "other", nullptr), FALSE);
    EXPECT_EQ(std::filesystem::last_write_time(file), before);
}

TEST_F(ProfileFiles, StructuresOfAnotherSizeOrDamagedAreRefused) {
    unsigned char bytes[] = {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF};
    unsigned char back[8] = {};
    const auto get = [&](UINT size) { return GetPrivateProfileStructA("s", "k", back, size, file.c_str()); };
    const auto put = [&](void* data, UINT size) {
        EXPECT_NE(WritePrivateProfileStructA("s", "k", data, size, file.c_str()), FALSE);
        return read("s", "k");
    };
    const std::string good = put(bytes, 6);
    EXPECT_EQ(good, "00017F80FEFFFD");
    EXPECT_TRUE(get(6) != FALSE && std::equal(bytes, bytes + 6, back));
    EXPECT_TRUE(get(5) == FALSE && get(7) == FALSE);
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char* wrong : {"5", onWindows ? "" : "g", ""}) {
            write("s", "k", std::string(good).replace(i, 1, wrong).c_str());
            EXPECT_EQ(get(6), FALSE) << i << wrong;
        }
    }
    write("s", "k", "00017f80fefffd");
    EXPECT_NE(get(6), FALSE);
    EXPECT_EQ(put(bytes, 0), "00");
    EXPECT_NE(get(0), FALSE);
    EXPECT_EQ(put(nullptr, 6), "DEF");
}

TEST_F(ProfileFiles, AFileThatIsHeldReadsAsMissingAndIsNotWritten) {
    for (DWORD shared = 0; shared <= (FILE_SHARE_READ | FILE_SHARE_WRITE); ++shared) {
        const bool readable = (shared & FILE_SHARE_READ) != 0;
        const bool writable = readable && (shared & FILE_SHARE_WRITE) != 0;
        fill(file, "[s]\r\nk=v\r\n");
        const HANDLE held =
            CreateFileA(file.c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(read("s", "k"), readable ? "v" : "DEF");
        EXPECT_TRUE(readable || GetLastError() == ERROR_SHARING_VIOLATION);
        EXPECT_EQ(write("s", "k", "w") != FALSE, writable);
        EXPECT_TRUE(writable || GetLastError() == ERROR_SHARING_VIOLATION);
        CloseHandle(held);
    }
}

#if defined(_WIN32)

TEST_F(ProfileFiles, ProcessesLinksAndPermissions) {
    GTEST_SKIP() << "fork, ptrace, links and permissions are tested on the layer only";
}

#else

// What findValue has to answer, the slow and plain way.
std::optional<std::string> plainFind(const std::string& text, const std::string& key) {
    const auto trim = [](std::string part) {
        part.erase(0, std::min(part.find_first_not_of(" \r\n"), part.size()));
        part.erase(part.find_last_not_of(" \r\n") + 1);
        return part;
    };
    bool inside = false;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        const std::string line = trim(text.substr(begin, end - begin));
        begin = end + 1;
        if (line.empty() || line[0] == ';') continue;
        if (line[0] == '[') {
            if (inside) return std::nullopt;
            inside = trim(line.substr(1, std::min(line.rfind(']'), line.size()) - 1)) == "s";
        } else if (const std::size_t sign = line.find('='); inside && sign != std::string::npos) {
            if (trim(line.substr(0, sign)) == key) return trim(line.substr(sign + 1));
        }
    }
    return std::nullopt;
}

TEST(ProfileText, FastAndPlainReaderAgreeOnRandomTexts) {
    const char* const pieces[] = {"[s]", "[",  "]", "=",  ";", " ",  "\r\n",
                                  "\n",  "\r", "a", "ab", "s", "b=", "a=b"};
    std::mt19937 random(11);  // NOLINT: the same texts each time
    int found = 0;
    for (int i = 0; i < 10000; ++i) {
        std::string text = i % 2 == 0 ? "" : "[s]\r\n";
        for (auto n = random() % 60; n > 0; --n) text += pieces[random() % std::size(pieces)];
        for (const char* key : {"a", "ab", "b", ""}) {
            const auto fast = tarn::profile::findValue(text, "s", key);
            ASSERT_EQ(fast ? std::optional(std::string(*fast)) : std::nullopt, plainFind(text, key)) << text;
            found += fast ? 1 : 0;
            const auto written = tarn::profile::withValue(text, "s", key, "new");
            EXPECT_TRUE(!written || plainFind(*written, key) == "new") << text;
            const auto removed = tarn::profile::withoutKey(written.value_or(text), "s", key);
            EXPECT_TRUE(removed && removed->size() < written.value_or(text).size()) << text;
        }
    }
    EXPECT_GT(found, 3000);
}

TEST_F(ProfileFiles, WritersInTwoProcessesLoseNothing) {
    constexpr int keys = 25;
    const auto writeKeys = [&](const std::string& name) {
        for (int i = 0; i < keys; ++i) write("s", (name + std::to_string(i)).c_str(), "v");
    };
    const pid_t child = tarntest::startChild([&] { writeKeys("child"); });
    writeKeys("parent");
    EXPECT_EQ(tarntest::waitFor(child), 0);
    for (int i = 0; i < keys; ++i) {
        EXPECT_EQ(read("s", ("child" + std::to_string(i)).c_str()), "v");
        EXPECT_EQ(read("s", ("parent" + std::to_string(i)).c_str()), "v");
    }
}

TEST_F(ProfileFiles, AWriterKilledAtAnySystemCallLeavesOneOfTheTwoFilesAndNoLock) {
    const std::string old = "[s]\r\nk=old\r\n";
    for (const std::string& before : {old, ""s}) {
        int stops = 0;
        for (bool killed = true; killed; ++stops) {
            if (before.empty())
                std::filesystem::remove(file);
            else
                fill(file, before);
            killed = tarntest::killedAtStop(stops, [&] { write("s", "k", "new"); });
            const std::string after = contentOf(file);
            EXPECT_TRUE(after == before || after == "[s]\r\nk=new\r\n") << stops << after;
            ASSERT_NE(write("s", "k", "again"), FALSE);
            EXPECT_EQ(contentOf(file), "[s]\r\nk=again\r\n");
            const std::filesystem::directory_iterator files(folder.path());
            EXPECT_EQ(std::distance(begin(files), end(files)), 1) << "a temporary file is left";
        }
        EXPECT_GT(stops, 20);
    }
}

TEST_F(ProfileFiles, LinksAndPermissionsStay) {
    const std::string target = folder.file("target.ini");
    fill(target, "[s]\r\n");
    std::filesystem::permissions(target, std::filesystem::perms{0640});
    std::filesystem::create_symlink("target.ini", file);
    ASSERT_NE(write("s", "k", "v"), FALSE);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[s]\r\nk=v\r\n");
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms{0640});
}

TEST_F(ProfileFiles, WhatIsNoFileNeitherHangsNorIsReplaced) {
    const std::string pipe = folder.file("pipe.ini");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& odd : {pipe, folder.path().string(), "/dev/zero"s, ""s, "/"s}) {
        file = odd;
        EXPECT_EQ(read("s", "k"), "DEF") << odd;
        EXPECT_EQ(write("s", "k", "v"), FALSE) << odd;
    }
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
}

TEST(Sha256, GivesThePublishedDigests) {  // FIPS 180-2, appendix B
    EXPECT_EQ(tarn::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(tarn::sha256(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

#endif

}  // namespace
