// Ini files and registry keys of a program: store/ini_file.cpp and store/registry.cpp.

#include "store/settings.h"

#include <cstring>
#include <string>

#include "tests/support.h"

using namespace std::string_literals;

namespace {

// A temporary folder as the current one, for as long as the test runs.
struct IniFile : testing::Test {
    tarntest::TemporaryFolder folder{tarntest::inMemory};
    std::filesystem::path before = std::filesystem::current_path();

    IniFile() { std::filesystem::current_path(folder.path()); }
    ~IniFile() override { std::filesystem::current_path(before); }
};

TEST_F(IniFile, StaysInItsDirectoryUntilItIsToldAnother) {
    tarnIniFile ini("client");
    std::filesystem::create_directories("other");
    std::filesystem::current_path("other");
    EXPECT_EQ(ini.writeIniString("s", "k", "v"), 1);
    EXPECT_EQ(tarntest::contentOf(folder.file("client.ini")), "[s]\r\nk=v\r\n");
    ini.setIniFileDirectory(folder.file("other").c_str());
    EXPECT_EQ(ini.writeIniInt("s", "k", -5), 1);
    EXPECT_EQ(tarntest::contentOf(folder.file("other/client.ini")), "[s]\r\nk=-5\r\n");
    ini.setIniFileDirectory(folder.file("none").c_str());
    EXPECT_EQ(ini.writeIniString("s", "k", "v"), 0);
    tarnIniFile("x.ini").writeIniString("s", "k", "v");
    EXPECT_TRUE(std::filesystem::exists(folder.file("other/x.ini.ini")));
}

TEST_F(IniFile, ADirectoryTooLongToKeepIsFollowedByTheShortestPath) {
    if (tarntest::onWindows) GTEST_SKIP() << "the system has no current directory of that length";
    for (int i = 0; i < 3; ++i) {
        std::filesystem::create_directory(std::string(100, 'd'));
        std::filesystem::current_path(std::string(100, 'd'));
    }
    tarnIniFile ini("client");
    EXPECT_EQ(ini.writeIniString("s", "k", "v"), 1);
    EXPECT_TRUE(std::filesystem::exists("client.ini"));
}

TEST_F(IniFile, DefaultsStandInForWhatIsMissingOrEmpty) {
    tarnIniFile ini("client");
    const struct {
        const char *stored, *fallback, *text;
        int result;
    } texts[] = {{"v", "other", "v", 1},
                 {"", "other", "other", 0},
                 {nullptr, "other", "other", 0},
                 {nullptr, nullptr, "", 0},
                 {nullptr, "  kept \"", "  kept \"", 0},
                 {"longer", "x", "long", 1}};
    for (const auto& row : texts) {
        char buffer[20] = "before";
        ini.writeIniString("s", "k", row.stored);
        EXPECT_EQ(ini.readIniString("s", "k", row.fallback, buffer, 5), row.result);
        EXPECT_STREQ(buffer, row.text);
    }
    char buffer[20] = "before";
    EXPECT_EQ(ini.readIniString("s", "k", "default", buffer, -1), 0);
    EXPECT_STREQ(buffer, "default");
    EXPECT_EQ(ini.readIniString("s", "k", buffer + 2, buffer, 0), 0);
    EXPECT_STREQ(buffer, "fault");
    const struct {
        const char* stored;
        std::int32_t number;
        int result;
    } numbers[] = {{"7", 7, 1},          {nullptr, 8, 0},      {"", 8, 0},
                   {"-286331154", 8, 0}, {"4008636142", 8, 0}, {"8", 8, 1}};
    for (const auto& row : numbers) {
        std::int32_t number = -1;
        ini.writeIniString("s", "k", row.stored);
        EXPECT_EQ(ini.readIniInt("s", "k", 8, number), row.result) << row.number;
        EXPECT_EQ(number, row.number);
    }
}

TEST_F(IniFile, BlocksComeBackWholeOrAsTheirDefault) {
    tarnIniFile ini("client");
    const std::string block = "\0\x01\xFF=;\n"s;
    char buffer[7] = {};
    EXPECT_EQ(ini.writeIniStruct("s", "k", block.data(), 6), 1);
    EXPECT_EQ(ini.readIniStruct("s", "k", "default", buffer, 6), 1);
    EXPECT_EQ(std::string(buffer, 6), block);
    EXPECT_EQ(ini.readIniStruct("s", "k", "default", buffer, 7), 0);
    EXPECT_EQ(std::string(buffer, 7), "default");
    EXPECT_EQ(ini.writeIniStruct("s", "k", block.data(), -1), 0);
    EXPECT_EQ(ini.readIniStruct("s", "k", "default", buffer, -1), 0);
    EXPECT_EQ(ini.readIniStruct("s", "k", "default", nullptr, 7), 0);
}

struct RegistryObject : testing::Test {
    tarntest::TemporaryFolder data{tarntest::inMemory};
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryObject() {
        tarntest::setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        EXPECT_EQ(registry.openKey("Software\\tarnutil-store", 1), 1);
    }
    ~RegistryObject() override {
        registry.closeKey();
        registry.deleteSubKeyTree("Software\\tarnutil-store");
        RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\tarnutil-store");
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryObject, StoresTextsNumbersAndBlocksUnderTheirTypes) {
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\tarnutil-store", 0, KEY_ALL_ACCESS, &key);
    const auto expect = [&](const char* name, DWORD type, const std::string& bytes) {
        char buffer[20] = {};
        DWORD told = 0;
        DWORD size = sizeof buffer;
        EXPECT_EQ(RegQueryValueExA(key, name, nullptr, &told, reinterpret_cast<BYTE*>(buffer), &size), 0);
        EXPECT_EQ(told, type);
        EXPECT_EQ(std::string(buffer, size), bytes);
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(registry.get(name, buffer, size), 1);
        EXPECT_EQ(std::string(buffer, size + 1), bytes + '#');
        EXPECT_EQ(registry.getBinary(name, buffer, size - 1), 0);
    };
    char classText[20];
    DWORD length = sizeof classText;
    RegQueryInfoKeyA(key, classText, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    EXPECT_STREQ(classText, "MOLT Settings");
    EXPECT_EQ(registry.set("number", 0x01020304), 1);
    expect("number", REG_DWORD, "\4\3\2\1");
    EXPECT_EQ(registry.set("text", "", 0), 1);
    expect("text", REG_SZ, "\0"s);
    EXPECT_EQ(registry.set("list", "a\0b\0", 5), 1);
    expect("list", REG_MULTI_SZ, "a\0b\0\0"s);
    EXPECT_EQ(registry.setBinary("block", "\0\xFF", 2), 1);
    expect("block", REG_BINARY, "\0\xFF"s);
    std::uint32_t number = 7;
    EXPECT_EQ(registry.get("number", number), 1);
    EXPECT_EQ(number, 0x01020304U);
    EXPECT_EQ(registry.get("list", number), 0);
    EXPECT_EQ(number, 0x01020304U);
    EXPECT_EQ(registry.flushKey(), 1);
    EXPECT_EQ(registry.deleteValue("list"), 1);
    EXPECT_EQ(registry.deleteValue("list"), 0);
    RegCloseKey(key);
}

TEST_F(RegistryObject, AfterAFailedOpenNothingWorksAndNothingCrashes) {
    tarnRegistry other(HKEY_CURRENT_USER);
    std::uint32_t number = 7;
    char buffer[4];
    EXPECT_EQ(other.openKey("Software\\tarnutil-none", 0), 0);
    EXPECT_EQ(other.set("n", 1), 0);
    EXPECT_EQ(other.set("n", "text", 0), 0);
    EXPECT_EQ(other.set("n", nullptr, 0), 0);
    EXPECT_EQ(other.get("n", number), 0);
    EXPECT_EQ(other.get("n", buffer, 4), 0);
    EXPECT_EQ(other.deleteSubKey("x"), 0);
    EXPECT_EQ(other.deleteValue("x"), 0);
    EXPECT_EQ(other.flushKey(), 0);
    EXPECT_EQ(other.closeKey(), 0);
    EXPECT_EQ(registry.openKey(nullptr, 1), 0);
    EXPECT_EQ(registry.set("n", 1), 1) << "a NULL name must not forget the open key";
    EXPECT_EQ(registry.get("n", nullptr, 4), 0);
    EXPECT_EQ(registry.setBinary("n", nullptr, 4), 0);
    EXPECT_EQ(registry.deleteSubKey(nullptr), 0);
    EXPECT_EQ(registry.deleteSubKeyTree(nullptr), 0);
}

TEST_F(RegistryObject, ATreeOfManyKeysGoesAndItsTopStaysWithItsValues) {
    for (int i = 0; i < 40; ++i) {
        tarnRegistry below(HKEY_CURRENT_USER);
        const std::string name =
            "Software\\tarnutil-store\\top\\k" + std::to_string(i) + (i % 10 == 0 ? "\\a\\b" : "");
        ASSERT_EQ(below.openKey(name.c_str(), 1), 1);
        below.set("v", 1);
        below.closeKey();
    }
    tarnRegistry top(HKEY_CURRENT_USER);
    ASSERT_EQ(top.openKey("Software\\tarnutil-store\\top", 0), 1);
    top.set("v", 5);
    EXPECT_EQ(registry.deleteSubKey("top"), 0);
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(registry.deleteSubKeyTree("Software\\tarnutil-store\\top"), 1);
    std::uint32_t number = 0;
    EXPECT_EQ(top.get("v", number), 1);
    EXPECT_EQ(top.deleteSubKey("k0"), 0);
    EXPECT_EQ(registry.deleteSubKey("top"), 1);
    EXPECT_EQ(registry.deleteSubKeyTree("Software\\tarnutil-store\\top"), 0);
}

TEST_F(RegistryObject, KeysGo512DeepAndTheWholeDepthGoes) {
    if (tarntest::onWindows) GTEST_SKIP() << "the system's own limit on one path is lower";
    std::string name = "Software\\tarnutil-store";
    for (int depth = 2; depth < 512; ++depth) name += "\\d";
    tarnRegistry deep(HKEY_CURRENT_USER);
    EXPECT_EQ(deep.openKey((name + "\\d").c_str(), 1), 0);
    EXPECT_EQ(deep.openKey(name.c_str(), 1), 1);
    EXPECT_EQ(deep.set("v", 1), 1);
    EXPECT_EQ(deep.closeKey(), 1);
    EXPECT_EQ(deep.deleteSubKeyTree("Software\\tarnutil-store"), 1);
    EXPECT_EQ(deep.openKey("Software\\tarnutil-store\\d", 0), 0);
}

}  // namespace
