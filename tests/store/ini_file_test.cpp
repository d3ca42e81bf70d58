// Ini files of a program: store/ini_file.cpp.

#include "store/settings.h"

#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;

namespace {

// A temporary folder as the current one, for as long as the test runs.
struct IniFile : testing::Test {
    TemporaryFolder folder{inMemory};
    std::filesystem::path before = std::filesystem::current_path();
    tarnIniFile ini{(std::filesystem::current_path(folder.path()), "client")};

    ~IniFile() override { std::filesystem::current_path(before); }
};

TEST_F(IniFile, StaysInItsDirectoryUntilItIsToldAnother) {
    std::filesystem::create_directories("other");
    std::filesystem::current_path("other");
    EXPECT_EQ(ini.writeIniString("s", "k", "v"), 1);
    EXPECT_EQ(contentOf(folder.file("client.ini")), "[s]\r\nk=v\r\n");
    ini.setIniFileDirectory(folder.file("other").c_str());
    EXPECT_EQ(ini.writeIniInt("s", "k", -5), 1);
    EXPECT_EQ(contentOf("client.ini"), "[s]\r\nk=-5\r\n");
    ini.setIniFileDirectory(folder.file("none").c_str());
    EXPECT_EQ(ini.writeIniString("s", "k", "v"), 0);
    EXPECT_EQ(tarnIniFile("x.ini").writeIniString("s", "k", "v"), 1);
    EXPECT_TRUE(std::filesystem::exists("x.ini.ini"));
}

TEST_F(IniFile, ADirectoryTooLongToKeepIsFollowedByTheShortestPath) {
    if (onWindows) GTEST_SKIP() << "the system has no current directory of that length";
    const std::string part(100, 'd');
    std::filesystem::create_directories(part + '/' + part + '/' + part);
    std::filesystem::current_path(part + '/' + part + '/' + part);
    EXPECT_EQ(tarnIniFile("client").writeIniString("s", "k", "v"), 1);
    EXPECT_TRUE(std::filesystem::exists("client.ini"));
}

TEST_F(IniFile, DefaultsStandInForWhatIsMissingOrEmpty) {
    const auto answer = [&](const std::string& function, const std::vector<std::string>& cells) {
        const auto textOf = [](const std::string& cell) { return cell == "NULL" ? nullptr : cell.c_str(); };
        char buffer[20] = "before";
        std::int32_t value = -1;
        ini.writeIniString("s", "k", textOf(cells[0]));
        const int found = function == "int"
                              ? ini.readIniInt("s", "k", 8, value)
                              : ini.readIniString("s", "k", textOf(cells[1]), buffer, std::stoi(cells[2]));
        return std::to_string(found) + (function == "int" ? " " + std::to_string(value) : buffer);
    };
    // A number that is stored as the default is found too.
    expectAnswers(R"(
string:v|other|5|1v;longer|other|5|1long;|other|5|0other;NULL|  kept "|5|0  kept ";NULL|NULL|5|0;NULL|other|-1|0other
int:7|1 7;8|1 8;-286331154|0 8;4008636142|0 8;|0 8;NULL|0 8)",
                  answer);
    char buffer[] = "default";
    EXPECT_EQ(ini.readIniString("s", "k", buffer + 2, buffer, 0), 0);
    EXPECT_STREQ(buffer, "fault");
}

TEST_F(IniFile, BlocksComeBackWholeOrAsTheirDefault) {
    const std::string block = "\0\x01\xFF=;\n"s;
    std::string buffer(7, '#');
    EXPECT_EQ(ini.writeIniStruct("s", "k", block.data(), 6), 1);
    EXPECT_EQ(ini.readIniStruct("s", "k", "default", buffer.data(), 6), 1);
    EXPECT_EQ(buffer, block + '#');
    for (const int result : {ini.readIniStruct("s", "k", "default", buffer.data(), 7),
                             ini.writeIniStruct("s", "k", block.data(), -1),
                             ini.readIniStruct("s", "k", "another", buffer.data(), -1),
                             ini.readIniStruct("s", "k", "another", nullptr, 7)})
        EXPECT_EQ(result, 0);
    EXPECT_EQ(buffer, "default");
}

}  // namespace
