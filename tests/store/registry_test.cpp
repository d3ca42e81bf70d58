// Registry keys of a program: store/registry.cpp.

#include "store/settings.h"

#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;

namespace {

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
