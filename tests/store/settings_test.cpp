// Ini files and registry keys of a program: store/ini_file.cpp and store/registry.cpp.

#include "store/settings.h"

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
    const auto text = [&](const char* stored, const char* fallback, std::int32_t size) {
        char buffer[20] = "before";
        ini.writeIniString("s", "k", stored);
        const int result = ini.readIniString("s", "k", fallback, buffer, size);
        return std::to_string(result) + buffer;
    };
    EXPECT_EQ(text("v", "other", 5), "1v");
    EXPECT_EQ(text("longer", "other", 5), "1long");
    EXPECT_EQ(text("", "other", 5), "0other");
    EXPECT_EQ(text(nullptr, "  kept \"", 5), "0  kept \"");
    EXPECT_EQ(text(nullptr, nullptr, 5), "0");
    EXPECT_EQ(text(nullptr, "other", -1), "0other");
    char buffer[] = "default";
    EXPECT_EQ(ini.readIniString("s", "k", buffer + 2, buffer, 0), 0);
    EXPECT_STREQ(buffer, "fault");
    const auto number = [&](const char* stored) {
        std::int32_t value = -1;
        ini.writeIniString("s", "k", stored);
        const int result = ini.readIniInt("s", "k", 8, value);
        return 10 * value + result;
    };
    EXPECT_EQ(number("7"), 71);
    EXPECT_EQ(number("8"), 81) << "a stored default is there all the same";
    for (const char* missing : {"-286331154", "4008636142", "", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(number(missing), 80);
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
    static constexpr const char* home = "Software\\tarnutil-store";
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryObject() {
        tarntest::setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        EXPECT_EQ(registry.openKey(home, 1), 1);
    }
    ~RegistryObject() override {
        registry.closeKey();
        registry.deleteSubKeyTree(home);
        RegDeleteKeyA(HKEY_CURRENT_USER, home);
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryObject, StoresTextsNumbersAndBlocksUnderTheirTypes) {
    HKEY key = nullptr;
    char text[20];
    DWORD length = sizeof text;
    RegOpenKeyExA(HKEY_CURRENT_USER, home, 0, KEY_ALL_ACCESS, &key);
    RegQueryInfoKeyA(key, text, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr);
    EXPECT_STREQ(text, "MOLT Settings");
    const auto expect = [&](const char* name, DWORD type, const std::string& bytes) {
        DWORD told = 0;
        DWORD size = 0;
        EXPECT_EQ(RegQueryValueExA(key, name, nullptr, &told, nullptr, &size), 0);
        EXPECT_EQ(told, type);
        char buffer[20] = {};
        EXPECT_EQ(registry.get(name, buffer, size), 1);
        EXPECT_EQ(std::string(buffer, size), bytes);
        EXPECT_EQ(registry.getBinary(name, buffer, size - 1), 0);
    };
    std::uint32_t number = 7;
    EXPECT_EQ(registry.set("number", 0x01020304), 1);
    EXPECT_EQ(registry.get("number", number), 1);
    EXPECT_EQ(number, 0x01020304U);
    registry.set("text", "", 0);
    registry.set("list", "a\0b\0", 5);
    registry.setBinary("block", "\0\xFF", 2);
    expect("number", REG_DWORD, "\4\3\2\1");
    expect("text", REG_SZ, "\0"s);
    expect("list", REG_MULTI_SZ, "a\0b\0\0"s);
    expect("block", REG_BINARY, "\0\xFF"s);
    EXPECT_TRUE(registry.flushKey() == 1 && registry.deleteValue("list") == 1 &&
                registry.deleteValue("list") == 0);
    RegCloseKey(key);
}

TEST_F(RegistryObject, AfterAFailedOpenNothingWorksAndNothingCrashes) {
    tarnRegistry other(HKEY_CURRENT_USER);
    std::uint32_t number = 7;
    char buffer[4];
    const int results[] = {other.openKey("Software\\tarnutil-none", 0),
                           other.set("n", 1),
                           other.set("n", "text", 0),
                           other.set("n", nullptr, 0),
                           other.get("n", number),
                           other.get("n", buffer, 4),
                           other.deleteSubKey("x"),
                           other.deleteValue("x"),
                           other.flushKey(),
                           other.closeKey(),
                           other.openKey(nullptr, 1),
                           registry.get("n", nullptr, 4),
                           registry.setBinary("n", nullptr, 4),
                           registry.deleteSubKey(nullptr),
                           registry.deleteSubKeyTree(nullptr),
                           registry.openKey(nullptr, 1)};
    for (const int result : results) EXPECT_EQ(result, 0);
    EXPECT_EQ(registry.set("n", 1), 1) << "a NULL name must not forget the open key";
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
