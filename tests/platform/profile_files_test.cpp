// Ini files: platform/profile_files.cpp, profile_text.cpp, profile_encoding.cpp and atomic_file.cpp, and the
// system's own on Windows.

#include <algorithm>
#include <chrono>
#include <cstring>
#include <map>
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
    const struct {
        std::string text;
        const char *section, *key, *value;
        Where where = everywhere;
    } rows[] = {
        {"[Sec]\r\nKey=v\r\n", " sEC ", "\tkEY ", "v"},
        {" [ s ] junk\r\n \tk \t= \t v \t\r\n", "s", "k", "v"},
        {"[s]\nk=v", "s", "k", "v"},
        {"[s]\r\nk=\"  in  \"\r\n", "s", "k", "  in  "},
        {"[s]\r\nk=' x '\r\n", "s", "k", " x "},
        {"[s]\r\nk=\"\"a\"\"\r\n", "s", "k", "\"a\""},
        {"[s]\r\nk=\"abc\r\n", "s", "k", "\"abc"},
        {"[s]\r\nk=\"a\" b\r\n", "s", "k", "\"a\" b"},
        {"[s]\r\nk=\"a'\r\n", "s", "k", "\"a'"},
        {"[s]\r\nk=\"\r\n", "s", "k", "\""},
        {"[s]\r\nk=a;b#c=d\r\n", "s", "k", "a;b#c=d"},
        {"[s]\r\n#k=1\r\n", "s", "#k", "1"},
        {"[s]\r\n;k=1\r\n", "s", ";k", "DEF", here},
        {"[s]\r\nk\r\nk=1\r\n", "s", "k", "1", here},
        {"[s]\r\nk=1\r\nk=2\r\n", "s", "k", "1"},
        {"[s]\r\n[s]\r\nk=1\r\n", "s", "k", "DEF"},
        {"[broken\r\nk=1\r\n", "broken", "k", "1", here},
        {"[]\r\nk=1\r\n", "", "k", "1", here},
        {"k=0\r\n[s]\r\nk=1\r\n", "", "k", "DEF", here},
        {"[a]b] c\r\nk=1\r\n", "a]b", "k", "1"},
        {"[s]\r\n=1\r\n", "s", "", "1"},
        {"[s]\r\nab=1\r\na=2\r\n", "s", "a", "2"},
        {"[s]\r\na=b=c\r\n", "s", "a=b", "DEF"},
        {"[s]\rk=1\r[t]\rk=2\r", "t", "k", "2"},
        {"\xEF\xBB\xBF[s]\r\nk=1\r\n", "s", "k", "1"},
        {"[s]\r\n\xE9=1\r\n\xC9=2\r\n", "s", "\xC9", "2"},
        {"\xFF\xFE[\0s\0]\0\n\0k\0=\0\xE9\0\xAC\x20\x00\x04\n\0"s, "s", "k", "\xE9\x80?"},
    };
    for (const auto& row : rows) {
        if (skips(row.where)) continue;
        fill(file, row.text);
        EXPECT_EQ(read(row.section, row.key), row.value) << row.text;
    }
}

TEST_F(ProfileFiles, NumbersEndAtTheFirstCharacterThatIsNone) {
    constexpr int otherwise = -42;
    const struct {
        const char* text;
        int number;
    } rows[] = {{"12abc", 12},
                {"-5", -5},
                {"+5", 5},
                {" 7 ", 7},
                {"\"8\"", 8},
                {"010", 10},
                {"abc", 0},
                {"--5", 0},
                {"- 5", 0},
                {"1e3", 1},
                {"3.9", 3},
                {"0x1F", 31},
                {"0X1f", 0},
                {"-0x10", -16},
                {"0b101", 5},
                {"0o17", 15},
                {"", otherwise},
                {"\"\"", otherwise},
                {"4294967296", 0},
                {"4294967297", 1},
                {"-4294967297", -1},
                {"4294967295", -1},
                {"2147483648", -2147483647 - 1},
                {"99999999999", 1215752191}};
    for (const auto& row : rows) {
        fill(file, "[s]\r\nk="s + row.text + "\r\n");
        EXPECT_EQ(static_cast<int>(GetPrivateProfileIntA("s", "k", otherwise, file.c_str())), row.number)
            << row.text;
    }
    EXPECT_EQ(GetPrivateProfileIntA("s", "other", otherwise, file.c_str()), static_cast<UINT>(otherwise));
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
    ASSERT_NE(WritePrivateProfileStructA("s", "k", bytes, 6, file.c_str()), FALSE);
    EXPECT_EQ(read("s", "k"), "00017F80FEFFFD");
    EXPECT_NE(get(6), FALSE);
    EXPECT_EQ(std::memcmp(back, bytes, 6), 0);
    EXPECT_EQ(get(5), FALSE);
    EXPECT_EQ(get(7), FALSE);
    write("s", "k", "00017f80fefffd");
    EXPECT_NE(get(6), FALSE);
    const std::string good = read("s", "k");
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char* wrong : {"5", onWindows ? "" : "g", ""}) {
            write("s", "k", std::string(good).replace(i, 1, wrong).c_str());
            EXPECT_EQ(get(6), FALSE) << i << wrong;
        }
    }
    EXPECT_NE(WritePrivateProfileStructA("s", "k", bytes, 0, file.c_str()), FALSE);
    EXPECT_EQ(read("s", "k"), "00");
    EXPECT_NE(get(0), FALSE);
    EXPECT_NE(WritePrivateProfileStructA("s", "k", nullptr, 6, file.c_str()), FALSE);
    EXPECT_EQ(read("s", "k"), "DEF");
}

TEST_F(ProfileFiles, AgreesWithAMapUnderRandomChanges) {
    std::mt19937 random(7);  // NOLINT: the same changes each time
    std::map<std::string, std::string> model;
    fill(file, "; first\r\n[s0]\r\n; second\r\n");
    for (int i = 0; i < 150; ++i) {
        const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
        const std::string section = (pick(2) ? "s" : "S") + std::to_string(pick(3));
        const std::string key = (pick(2) ? "k" : "K") + std::to_string(pick(12));
        const std::string name = section.substr(1) + '/' + key.substr(1);
        const std::string value = std::string(static_cast<std::size_t>(pick(40)), 'v') + std::to_string(i);
        const bool removes = pick(3) == 0;
        ASSERT_NE(write(section.c_str(), key.c_str(), removes ? nullptr : value.c_str()), FALSE);
        if (removes)
            model.erase(name);
        else
            model[name] = value;
        for (int s = 0; s < 3; ++s) {
            const int k = pick(12);
            const auto found = model.find(std::to_string(s) + '/' + std::to_string(k));
            EXPECT_EQ(read(("s" + std::to_string(s)).c_str(), ("k" + std::to_string(k)).c_str()),
                      found == model.end() ? "DEF" : found->second);
        }
    }
    EXPECT_EQ(contentOf(file).find("; first\r\n[s0]\r\n; second\r\n"), 0U);
}

TEST_F(ProfileFiles, AFileThatIsHeldReadsAsMissingAndIsNotWritten) {
    const struct {
        DWORD share;
        const char* value;
        BOOL written;
    } rows[] = {{0, "DEF", FALSE},
                {FILE_SHARE_READ, "v", FALSE},
                {FILE_SHARE_WRITE, "DEF", FALSE},
                {FILE_SHARE_READ | FILE_SHARE_WRITE, "v", TRUE}};
    for (const auto& row : rows) {
        fill(file, "[s]\r\nk=v\r\n");
        const HANDLE held =
            CreateFileA(file.c_str(), GENERIC_READ, row.share, nullptr, OPEN_EXISTING, 0, nullptr);
        ASSERT_NE(held, INVALID_HANDLE_VALUE);
        EXPECT_EQ(read("s", "k"), row.value);
        EXPECT_TRUE(row.value == "v"s || GetLastError() == ERROR_SHARING_VIOLATION);
        EXPECT_EQ(write("s", "k", "w"), row.written);
        EXPECT_TRUE(row.written != FALSE || GetLastError() == ERROR_SHARING_VIOLATION);
        CloseHandle(held);
    }
    EXPECT_EQ(contentOf(file), "[s]\r\nk=w\r\n");
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
            EXPECT_TRUE(!written || tarn::profile::findValue(*written, "s", key) == "new") << text;
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
    ::chmod(target.c_str(), 0640);
    std::filesystem::create_symlink("target.ini", file);
    ASSERT_NE(write("s", "k", "v"), FALSE);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[s]\r\nk=v\r\n");
    struct stat status {};
    ::stat(target.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(ProfileFiles, WhatIsNoFileNeitherHangsNorIsReplaced) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(read("s", "k"), "DEF");
    EXPECT_EQ(write("s", "k", "v"), FALSE);
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    file = folder.path().string();
    EXPECT_EQ(read("s", "k"), "DEF");
    EXPECT_EQ(write("s", "k", "v"), FALSE);
    for (const char* odd : {"/dev/zero", "", "/"}) {
        file = odd;
        EXPECT_EQ(read("s", "k"), "DEF") << odd;
        EXPECT_EQ(write("s", "k", "v"), FALSE) << odd;
    }
}

TEST(Sha256, GivesThePublishedDigests) {  // FIPS 180-2, appendix B
    EXPECT_EQ(tarn::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(tarn::sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(tarn::sha256(std::string(1000000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

#endif

}  // namespace
