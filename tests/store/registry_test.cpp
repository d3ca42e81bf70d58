// Registry keys of a program: store/registry.cpp.

#include "store/settings.h"

#include "tests/process.h"
#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;

namespace {

struct RegistryObject : testing::Test {
    TemporaryFolder data{inMemory};
    const std::string home = "Software\\tarnutil-store";
    tarnRegistry registry{HKEY_CURRENT_USER};

    RegistryObject() {
        setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        EXPECT_EQ(registry.openKey(home.c_str(), 1), 1);
    }
    ~RegistryObject() override {
        registry.closeKey();
        registry.deleteSubKeyTree(home.c_str());
        RegDeleteKeyA(HKEY_CURRENT_USER, home.c_str());
        setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

TEST_F(RegistryObject, ATreeOf512LevelsIsDeletedWithWhatIsDamagedAndItsTopKeepsItsValues) {
    const std::string name = home + "\\top";
    const int levels = onWindows ? 30 : 512;  // the system's own limit on one path is lower
    std::string deepest = name;
    for (int depth = 3; depth < levels; ++depth) deepest += "\\d";
    tarnRegistry top(HKEY_CURRENT_USER);
    for (const std::string& each : {deepest, name + "\\b", name + "\\c", name + "\\d\\d\\z\\z", name}) {
        top.closeKey();
        EXPECT_EQ(top.openKey(each.c_str(), 1), 1) << each;
        EXPECT_EQ(top.set("v", 5), 1);
    }
    EXPECT_EQ(registry.deleteSubKey("top"), 0);
    EXPECT_EQ(registry.set("text", nullptr, 0), 0);
    for (const int expected : {1, 0}) EXPECT_EQ(top.deleteValue("v"), expected);
    EXPECT_EQ(top.set("v", 5), 1);
#if !defined(_WIN32)
    EXPECT_EQ(tarnRegistry(HKEY_CURRENT_USER).openKey((deepest + "\\d").c_str(), 1), 0);
    const auto folder = data.path() / "tarnutil/registry/HKEY_CURRENT_USER/k-software/k-tarnutil-store/k-top";
    fill(folder / "k-b/key", "");
    std::filesystem::copy(folder / "k-c", folder / "k-c (copy)");
    const FewDescriptors few(64);
#endif
    for (int round = 0; round < 2; ++round) EXPECT_EQ(registry.deleteSubKeyTree(name.c_str()), 1);
    std::uint32_t number = 0;
    EXPECT_EQ(top.get("v", number), 1);
    EXPECT_EQ(registry.deleteSubKey("top"), 1);
    EXPECT_EQ(registry.deleteSubKeyTree(name.c_str()), 0);
}

}  // namespace
