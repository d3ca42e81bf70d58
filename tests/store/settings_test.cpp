// Ini files and registry keys of a program: store/ini_file.cpp and store/registry.cpp.

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

struct RegistryObject : testing::Test {
    TemporaryFolder data{inMemory};
    static constexpr const char* home = "Software\\tarnutil-store";
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryObject() {
        setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        EXPECT_EQ(registry.openKey(home, 1), 1);
    }
    ~RegistryObject() override {
        registry.closeKey();
        registry.deleteSubKeyTree(home);
        RegDeleteKeyA(HKEY_CURRENT_USER, home);
        setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryObject, StoresTextsNumbersAndBlocksUnderTheirTypes) {
    HKEY key = nullptr;
    char buffer[20];
    DWORD size = sizeof buffer;
    RegOpenKeyExA(HKEY_CURRENT_USER, home, 0, KEY_ALL_ACCESS, &key);
    RegQueryInfoKeyA(key, buffer, &size, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    EXPECT_STREQ(buffer, "MOLT Settings");
    std::uint32_t number = 7;
    EXPECT_TRUE(registry.set("number", 0x01020304) == 1 && registry.get("number", number) == 1);
    EXPECT_EQ(number, 0x01020304U);
    registry.set("text", "", 0);
    registry.set("list", "a\0b\0", 5);
    registry.setBinary("block", "\0\xFF", 2);
    const DWORD types[] = {REG_DWORD, REG_SZ, REG_MULTI_SZ, REG_BINARY};
    const std::string bytes[] = {"\4\3\2\1", "\0"s, "a\0b\0\0"s, "\0\xFF"s};
    for (int i = 0; const char* name : {"number", "text", "list", "block"}) {
        DWORD told = 0;
        RegQueryValueExA(key, name, nullptr, &told, nullptr, &size);
        EXPECT_TRUE(told == types[i] && registry.get(name, buffer, size) == 1) << name;
        EXPECT_EQ(std::string(buffer, size), bytes[i++]);
        EXPECT_EQ(registry.getBinary(name, buffer, size - 1), 0);
    }
    EXPECT_TRUE(registry.flushKey() == 1 && registry.deleteValue("list") == 1);
    EXPECT_EQ(registry.deleteValue("list"), 0);
    RegCloseKey(key);
}

TEST_F(RegistryObject, AfterAFailedOpenNothingWorksAndNothingCrashes) {
    tarnRegistry other(HKEY_CURRENT_USER);
    std::uint32_t number = 7;
    char buffer[4];
    for (const int result :
         {other.openKey("Software\\tarnutil-none", 0), other.set("n", 1), other.set("n", "text", 0),
          other.set("n", nullptr, 0), other.get("n", number), other.get("n", buffer, 4),
          other.deleteSubKey("x"), other.deleteValue("x"), other.flushKey(), other.closeKey(),
          other.openKey(nullptr, 1), registry.get("n", nullptr, 4), registry.setBinary("n", nullptr, 4),
          registry.deleteSubKey(nullptr), registry.deleteSubKeyTree(nullptr), registry.openKey(nullptr, 1)})
        EXPECT_EQ(result, 0);
    EXPECT_EQ(registry.set("n", 1), 1) << "a NULL name must not forget the open key";
}

TEST_F(RegistryObject, ATreeOfManyKeysGoesAndItsTopStaysWithItsValues) {
    const std::string name = home + "\\top"s;
    tarnRegistry top(HKEY_CURRENT_USER);
    for (int i = 40; i >= 0; --i) {
        const std::string below = i == 0 ? "" : "\\k" + std::to_string(i) + (i % 10 == 0 ? "\\a\\b" : "");
        EXPECT_TRUE(top.openKey((name + below).c_str(), 1) == 1 && top.set("v", 5) == 1);
    }
    EXPECT_EQ(registry.deleteSubKey("top"), 0);
    for (int round = 0; round < 2; ++round) EXPECT_EQ(registry.deleteSubKeyTree(name.c_str()), 1);
    std::uint32_t number = 0;
    EXPECT_TRUE(top.get("v", number) == 1 && top.deleteSubKey("k1") == 0);
    EXPECT_EQ(registry.deleteSubKey("top"), 1);
    EXPECT_EQ(registry.deleteSubKeyTree(name.c_str()), 0);
}

TEST_F(RegistryObject, KeysGo512DeepAndTheWholeDepthGoes) {
    if (onWindows) GTEST_SKIP() << "the system's own limit on one path is lower";
    std::string name = home;
    for (int depth = 2; depth < 512; ++depth) name += "\\d";
    tarnRegistry deep(HKEY_CURRENT_USER);
    EXPECT_EQ(deep.openKey((name + "\\d").c_str(), 1), 0);
    EXPECT_TRUE(deep.openKey(name.c_str(), 1) == 1 && deep.set("v", 1) == 1 && deep.closeKey() == 1);
    EXPECT_EQ(deep.deleteSubKeyTree(home), 1);
    EXPECT_EQ(deep.openKey((home + "\\d"s).c_str(), 0), 0);
}

}  // namespace
