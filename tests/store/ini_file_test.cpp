// The ini file of a program: store/ini_file.cpp.

#include "store/settings.h"
#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;

namespace {

// A temporary folder as the current one, for as long as the test runs.
struct IniFile : testing::Test {
    TemporaryFolder folder{inMemory};
    std::filesystem::path before = std::filesystem::current_path();
    std::unique_ptr<tarnIniFile> ini;

    IniFile() {
        std::filesystem::current_path(folder.path());
        ini = std::make_unique<tarnIniFile>("client");
    }
    ~IniFile() override { std::filesystem::current_path(before); }
};

TEST_F(IniFile, MovesWithTheCurrentFolderOrStaysWhereItIsToMove) {
    std::filesystem::create_directories("other");
    std::filesystem::current_path("other");
    EXPECT_EQ(ini->writeIniString("s", "k", "v"), 1);
    EXPECT_EQ(contentOf(folder.file("client.ini")), "[s]\r\nk=v\r\n");
    ini->setIniFileDirectory(folder.file("other").c_str());
    EXPECT_EQ(ini->writeIniInt("s", "k", -5), 1);
    EXPECT_EQ(contentOf("client.ini"), "[s]\r\nk=-5\r\n");
    if (!onWindows) {  // which has no current folder of a longer name than 260
        const std::filesystem::path deep = std::string(100, 'd') + '/' + std::string(200, 'd');
        std::filesystem::create_directories(deep);
        std::filesystem::current_path(deep);
    }
    EXPECT_EQ(tarnIniFile("x.ini").writeIniString("s", "k", "v"), 1);
    EXPECT_TRUE(std::filesystem::exists("x.ini.ini"));
}

TEST_F(IniFile, ATextIsCutWronglyOrItsDefaultIsNotGiven) {
    const struct {
        const char* stored;  // NULL: there is no such key
        const char* fallback;
        std::int32_t size;
        int result;
        const char* answer;
    } rows[] = {
        {"longer", "other", 5, 1, "long"},
        {"", "other", 5, 0, "other"},
        {nullptr, "  kept \"", 5, 0, "  kept \""},
        {nullptr, nullptr, 5, 0, ""},
        {"v", "other", -1, 0, "other"},
    };
    for (const auto& each : rows) {
        char buffer[20] = "before";
        ini->writeIniString("s", "k", each.stored);
        EXPECT_EQ(ini->readIniString("s", "k", each.fallback, buffer, each.size), each.result) << each.answer;
        EXPECT_STREQ(buffer, each.answer);
    }
    char own[] = "default";
    EXPECT_EQ(ini->readIniString("s", "none", own + 2, own, 0), 0);
    EXPECT_STREQ(own, "fault");
}

TEST_F(IniFile, ANumberThatIsStoredCountsAsMissingOrOneThatIsNotIsFound) {
    const struct {
        const char* stored;
        int result;
        std::int32_t value;
    } rows[] = {
        {"8", 1, 8},           // as the default is
        {"-286331154", 0, 8},  // 0xEEEEEEEE
        {"", 0, 8},
    };
    for (const auto& each : rows) {
        std::int32_t value = -1;
        ini->writeIniString("s", "k", each.stored);
        EXPECT_EQ(ini->readIniInt("s", "k", 8, value), each.result) << each.stored;
        EXPECT_EQ(value, each.value);
    }
}

TEST_F(IniFile, ABlockComesBackInPartOrWithoutItsDefault) {
    const std::string block = "\0\x01\xFF=;\n"s;
    std::string buffer(7, '#');
    EXPECT_EQ(ini->writeIniStruct("s", "k", block.data(), 6), 1);
    EXPECT_EQ(ini->readIniStruct("s", "k", "default", buffer.data(), 6), 1);
    EXPECT_EQ(buffer, block + '#');
    EXPECT_EQ(ini->readIniStruct("s", "k", "default", buffer.data(), 7), 0);
    EXPECT_EQ(buffer, "default");
    EXPECT_EQ(ini->writeIniStruct("s", "k", block.data(), 0), 1);
    EXPECT_EQ(ini->readIniStruct("s", "k", "default", buffer.data(), 6), 0);
    EXPECT_EQ(ini->readIniStruct("s", "k", "default", buffer.data(), 0), 1);
}

}  // namespace
