// Ini files: platform/profile/operations.cpp, profile_text.cpp, profile_encoding.cpp and atomic_file.cpp, and the
// system's own on Windows.

#include "platform/profile/text.h"
#include "platform/registry/sha256.h"
#include "tests/plain/profile.h"
#include "tests/process.h"
#include "tests/support.h"

using namespace std::string_literals;
using tarntest::contentOf;
using tarntest::fill;
using tarntest::onWindows;

namespace {

// Cases between blanks:  read:file|section|key|answer|key|answer...   number:value|answer...
// default:given|answer... write:file|section|key|text|file after|section|key|text|file after...   A "!" in
// front: Windows or wine differs. Signs: _ blank, ^ CR LF, ~ CR, $ LF, %hh a byte; NULL is no text.
constexpr char examples[] =
#include "tests/platform/profile_examples.txt"
    ;

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells(1);
    for (std::size_t i = line.find(':') + 1; i < line.size(); ++i) {
        const std::size_t sign = "|^$~_%"s.find(line[i]);
        if (sign == 0) cells.emplace_back();
        if (sign < 5) cells.back() += std::array{"", "\r\n", "\n", "\r", " "}[sign];
        if (sign > 5) cells.back() += line[i];
        if (sign == 5) cells.back() += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
        if (sign == 5) i += 2;
    }
    return cells;
}

struct ProfileFiles : testing::Test {
    tarntest::TemporaryFolder folder{tarntest::inMemory};
    std::string file = folder.file("x.ini"), buffer;

    std::string read(const char* section, const char* key, const char* fallback = "DEF", DWORD size = 200) {
        buffer.assign(2000, '#');
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

TEST_F(ProfileFiles, ExampleAnswersOtherwise) {
    const auto number = [&] {
        return std::to_string(static_cast<int>(GetPrivateProfileIntA("s", "k", -42, file.c_str())));
    };
    EXPECT_EQ(number(), "-42") << "without a file";
    std::istringstream cases(examples);
    for (std::string example; cases >> example;) {
        if (onWindows && example[0] == '!') continue;
        SCOPED_TRACE(example);
        const char kind = example[example[0] == '!' ? 1 : 0];
        const std::vector<std::string> cells = cellsOf(example);
        const auto text = [&](std::size_t i) { return cells.at(i) == "NULL" ? nullptr : cells[i].c_str(); };
        if (kind == 'r' || kind == 'w') fill(file, cells[0]);
        const std::size_t step = kind == 'w' ? 4 : 2;
        for (std::size_t i = kind == 'r' ? 2 : kind == 'w' ? 1 : 0; i < cells.size(); i += step) {
            if (kind == 'n') fill(file, "[s]\r\nk=" + cells[i] + "\r\n");
            EXPECT_TRUE(kind != 'w' || write(text(i), text(i + 1), text(i + 2)));
            const std::string answer = kind == 'n'   ? number()
                                       : kind == 'w' ? contentOf(file)
                                       : kind == 'r' ? read(text(1), text(i))
                                                     : read("none", "k", text(i));
            EXPECT_EQ(answer, cells.at(i + step - 1));
        }
    }
}

TEST_F(ProfileFiles, WhatIsMissingTellsHow) {
    EXPECT_EQ(read(nullptr, nullptr), "");
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    file = folder.file("none") + "\\x.ini";
    for (const bool writes : {false, true}) {
        SetLastError(0);
        EXPECT_TRUE(writes ? !write("s", "k", "v") : read("s", "k") == "DEF");
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    }
}

TEST_F(ProfileFiles, CutListsEndInTwoNulsWithinTheBuffer) {
    fill(file, "[s]\r\n[t]\r\n[S]\r\n");
    for (DWORD size = 0; size < 12; ++size) {
        const std::string names = read(nullptr, nullptr, "", size);
        EXPECT_EQ(names, "s\0t\0S\0"s.substr(0, size < 2 ? 0 : size < 8 ? size - 2 : 6)) << size;
        EXPECT_TRUE(onWindows || size < 2 || size > 7 || buffer.compare(size - 2, 2, "\0\0"s) == 0) << size;
        EXPECT_EQ(read("s", "none", "abcdef", size), "abcdef"s.substr(0, std::max<DWORD>(size, 1) - 1))
            << size;
    }
}

TEST_F(ProfileFiles, NothingToChangeLeavesTheFileAlone) {
    EXPECT_TRUE(write("s", "k", nullptr) && write("s", nullptr, nullptr));
    EXPECT_FALSE(write(nullptr, "k", "v") || write(nullptr, nullptr, nullptr));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    fill(file, "[s]\r\nk=v\r\n");
    std::filesystem::last_write_time(file, {});
    const auto before = std::filesystem::last_write_time(file);
    EXPECT_TRUE(write("s", "K", "v") && write("s", "other", nullptr));
    EXPECT_EQ(std::filesystem::last_write_time(file), before);
}

TEST_F(ProfileFiles, StructuresOfAnotherSizeOrDamagedAreRefused) {
    std::string bytes = "\0\x01\x7F\x80\xFE\xFF"s, back(8, '#');
    const std::string good = "00017F80FEFFFD";
    const auto get = [&](UINT size) {
        return GetPrivateProfileStructA("s", "k", back.data(), size, file.c_str());
    };
    const auto put = [&](char* data, UINT size) {
        WritePrivateProfileStructA("s", "k", data, size, file.c_str());
        return read("s", "k");
    };
    EXPECT_TRUE(put(bytes.data(), 0) == "00" && get(0));
    EXPECT_EQ(put(bytes.data(), 6), good);
    EXPECT_TRUE(get(6) && !get(5) && !get(7));
    EXPECT_EQ(back.substr(0, 6), bytes);
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const char* wrong : {"5", onWindows ? "" : "z", ""}) {
            write("s", "k", std::string(good).replace(i, 1, wrong).c_str());
            EXPECT_FALSE(get(6)) << i << wrong;
        }
    }
    write("s", "k", "00017f80fefffd");
    EXPECT_TRUE(get(6) && put(nullptr, 6) == "DEF");
}

TEST_F(ProfileFiles, AFileThatIsHeldReadsAsMissingAndIsNotWritten) {
    for (DWORD shared = 0; shared <= (FILE_SHARE_READ | FILE_SHARE_WRITE); ++shared) {
        fill(file, "[s]\r\nk=v\r\n");
        const HANDLE held =
            CreateFileA(file.c_str(), GENERIC_READ, shared, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(read("s", "k"), (shared & FILE_SHARE_READ) != 0 ? "v" : "DEF");
        EXPECT_TRUE((shared & FILE_SHARE_READ) != 0 || GetLastError() == ERROR_SHARING_VIOLATION);
        const bool written = write("s", "k", "w") != FALSE;
        EXPECT_TRUE(shared == 3 ? written : !written && GetLastError() == ERROR_SHARING_VIOLATION);
        CloseHandle(held);
    }
}

#if !defined(_WIN32)

TEST(ProfileText, FastAndPlainReaderAgreeOnRandomTexts) {
    const std::array pieces = {"[s]", "[",  "]", "=",  ";", " ",  "\r\n",
                               "\n",  "\r", "a", "ab", "s", "b=", "a=b"};
    std::mt19937 random(11);  // NOLINT: the same texts each time
    int found = 0;
    for (int i = 0; i < 10000; ++i) {
        std::string text = i % 2 == 0 ? "" : "[s]\r\n";
        for (auto n = random() % 60; n > 0; --n) text += pieces[random() % std::size(pieces)];
        for (const char* key : {"a", "ab", "b", ""}) {
            const auto fast = tarn::profile::findValue(text, "s", key);
            ASSERT_EQ(fast ? std::optional(std::string(*fast)) : std::nullopt,
                      tarnplain::profileValue(text, "s", key))
                << text;
            found += fast ? 1 : 0;
            const auto written = tarn::profile::withValue(text, "s", key, "new");
            EXPECT_TRUE(!written || tarnplain::profileValue(*written, "s", key) == "new") << text;
            const auto removed = tarn::profile::withoutKey(written.value_or(text), "s", key);
            EXPECT_TRUE(removed && removed->size() < written.value_or(text).size()) << text;
        }
    }
    EXPECT_GT(found, 3000);
}

TEST_F(ProfileFiles, TwoWritersLoseNothingAndAReaderMissesNothing) {
    write("s", "fixed", "v");
    tarntest::twoWritersAndAReader(
        [&](const std::string& name, const std::string& round) {
            EXPECT_TRUE(write("s", name.c_str(), round.c_str()) && read("s", name.c_str()) == round);
        },
        [&](const std::string& name) {
            EXPECT_EQ(read("s", "fixed"), "v");
            return read("s", name.c_str(), "0");
        });
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
    EXPECT_TRUE(write("s", "k", "v") && std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(target), "[s]\r\nk=v\r\n");
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms{0640});
}

TEST_F(ProfileFiles, WhatIsNoFileNeitherHangsNorIsReplaced) {
    const std::string pipe = folder.file("pipe.ini");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& odd : {pipe, folder.path().string(), "/dev/zero"s, ""s, "/"s}) {
        file = odd;
        EXPECT_TRUE(read("s", "k") == "DEF" && !write("s", "k", "v")) << odd;
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
