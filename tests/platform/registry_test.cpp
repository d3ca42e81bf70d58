// The registry: platform/registry/operations.cpp, store.cpp, folders.cpp, record.cpp, names.cpp, sha256.cpp, and
// the system's own on Windows.

#include <numeric>
#include <set>

#include "tests/process.h"
#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;
namespace fs = std::filesystem;

namespace {

// Each test has a key of its own below the current user's root, in a data folder of its own.
struct Registry : testing::Test {
    static constexpr const char* home = "Software\\tarnutil-test";
    TemporaryFolder data{inMemory};
    fs::path folder = data.path() / "tarnutil/registry/HKEY_CURRENT_USER/k-software/k-tarnutil-test";
    HKEY key = nullptr;

    Registry() {
        setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        create(HKEY_CURRENT_USER, home, &key);
    }
    ~Registry() override {
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_CURRENT_USER, home);
        setEnvironment("XDG_DATA_HOME", nullptr);
    }

    // What the calls answer for a name.  A handle that isn't asked for is closed.
    static LSTATUS create(HKEY parent, const std::string& name, HKEY* made = nullptr,
                          DWORD* disposition = nullptr) {
        HKEY own = nullptr;
        char classText[] = "Class";
        const LSTATUS status = RegCreateKeyExA(parent, name.c_str(), 0, classText, 0, KEY_ALL_ACCESS, nullptr,
                                               made != nullptr ? made : &own, disposition);
        RegCloseKey(own);
        return status;
    }
    static LSTATUS open(HKEY parent, const std::string& name) {
        HKEY result = nullptr;
        const LSTATUS status = RegOpenKeyExA(parent, name.c_str(), 0, KEY_ALL_ACCESS, &result);
        EXPECT_EQ(RegCloseKey(result), status == 0 ? 0 : 6) << "no key and yet a handle, or the other way";
        return status;
    }
    static LSTATUS erase(HKEY parent, const std::string& name) { return RegDeleteKeyA(parent, name.c_str()); }

    LSTATUS set(const std::string& name, const std::string& value) const {
        return RegSetValueExA(key, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(value.data()),
                              static_cast<DWORD>(value.size()));
    }
    // The value's bytes, or the error as text.
    std::string get(const std::string& name) const {
        std::string value((1U << 20) + 1, '#');
        auto size = static_cast<DWORD>(value.size());
        const LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, nullptr,
                                                reinterpret_cast<BYTE*>(value.data()), &size);
        return status == 0 ? value.substr(0, size) : "error " + std::to_string(status);
    }

    using Names = std::vector<std::string>;
    static Names keysOf(HKEY parent) {
        Names names;
        char name[300];
        for (DWORD i = 0; RegEnumKeyA(parent, i, name, sizeof name) == 0; ++i) names.emplace_back(name);
        return names;
    }
};

TEST_F(Registry, PathsAnswerTheirCodesAndKeysKeepTheirFirstSpelling) {
    DWORD first = 0, second = 0;
    create(key, "A\\B\\C", nullptr, &first);
    create(key, "a\\B\\c\\", nullptr, &second);
    EXPECT_EQ(first, DWORD{REG_CREATED_NEW_KEY});
    EXPECT_EQ(second, DWORD{REG_OPENED_EXISTING_KEY});
    EXPECT_EQ(keysOf(key), Names{"A"});
    const struct {
        std::string path;
        LSTATUS opened, deleted;
    } steps[] = {
        {"\\A", 161, 161},  // of `\`, only the one in front counts
        {"a\\\\b\\c\\\\", 0, 0}, {"A\\B\\C", 2, 2}, {"None\\C", 2, 2},
        {"A/B", 2, 2},           {"..", 2, 2},      {"A", 0, 5},
        {"A\\B\\", 0, 0},        {"A", 0, 0},
    };
    for (const auto& step : steps) {
        EXPECT_EQ(open(key, step.path), step.opened) << step.path;
        EXPECT_EQ(erase(key, step.path), step.deleted) << step.path;
    }
    EXPECT_EQ(RegDeleteKeyA(key, nullptr), 87);
    HKEY none = key;
    RegOpenKeyExA(key, "None", 0, KEY_ALL_ACCESS, &none);
    EXPECT_EQ(none, nullptr);
    none = key;
    EXPECT_EQ(create(key, "\\A", &none), 161);
    EXPECT_EQ(none, nullptr);
}

TEST_F(Registry, ValuesKeepTheirBytes) {
    std::string large(1U << 20, '\0');
    std::iota(large.begin(), large.end(), '\0');
    for (const std::string& bytes : {large, "ab"s, ""s}) {
        EXPECT_EQ(set("Azimuth", bytes), 0);
        EXPECT_EQ(get("aZIMUTH"), bytes);
    }
    EXPECT_EQ(set("Large", large + 'x'), onWindows ? 0 : 87);
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 5), 998);
    EXPECT_EQ(set("", "default"), 0);
    EXPECT_EQ(get(""), "default");
    for (const LSTATUS expected : {0, 2}) EXPECT_EQ(RegDeleteValueA(key, nullptr), expected);
}

TEST_F(Registry, BuffersThatAreTooSmallStayAndTheSizeIsAnswered) {
    set("b", "abc");
    const auto* const noNul = reinterpret_cast<const BYTE*>("abcX");
    RegSetValueExA(key, "t", 0, REG_SZ, noNul, 3);
    RegSetValueExA(key, "m", 0, REG_MULTI_SZ, noNul, 3);
    const struct {
        const char* name;
        DWORD room;
        std::tuple<LSTATUS, DWORD, DWORD, std::string> expected;  // the code, the type, the size, the buffer
    } cases[] = {
        {"t", 2, {234, 1, 3, "####"}}, {"t", 3, {0, 1, 3, "abc#"}},   {"t", 4, {0, 1, 3, "abc\0"s}},
        {"b", 4, {0, 3, 3, "abc#"}},   {"m", 4, {0, 7, 3, "abc\0"s}}, {"none", 4, {2, 0, 4, "####"}},
    };
    for (const auto& each : cases) {
        std::string buffer = "####";
        auto* const bytes = reinterpret_cast<BYTE*>(buffer.data());
        DWORD type = 99, size = each.room;
        const LSTATUS code = RegQueryValueExA(key, each.name, nullptr, &type, bytes, &size);
        EXPECT_EQ(std::tuple(code, type, size, buffer), each.expected) << each.name << each.room;
        EXPECT_EQ(RegQueryValueExA(key, "t", nullptr, nullptr, bytes, nullptr), 87);
    }
}

TEST_F(Registry, KeysAreCountedAndListedInTheOrderOfTheirFoldedNames) {
    const Names expected = {"m", "N1", "n22"};
    for (const char* name : {"n22", "m", "N1"}) create(key, name);
    set("a", "12345");
    set("long name", "");
    EXPECT_EQ(keysOf(key), expected);
    char small[3];
    EXPECT_EQ(RegEnumKeyA(key, 2, small, sizeof small), 234);
    EXPECT_EQ(RegEnumKeyA(key, 3, small, sizeof small), 259);
    char text[6] = {};
    std::array<DWORD, 5> counts{};
    FILETIME time{};
    DWORD size = sizeof text;
    RegQueryInfoKeyA(key, text, &size, nullptr, &counts[0], &counts[1], nullptr, &counts[2], &counts[3],
                     &counts[4], nullptr, &time);
    EXPECT_STREQ(text, "Class");
    EXPECT_EQ(counts, (std::array<DWORD, 5>{3, 3, 2, 9, 5})) << "keys, longest; values, longest, largest";
    const double changed = time.dwHighDateTime * 0x1p32 + time.dwLowDateTime;
    EXPECT_NEAR(changed / 1e7, 11'644'473'600.0 + static_cast<double>(std::time(nullptr)), 60) << "from 1601";
    for (const std::string& each : expected) EXPECT_EQ(erase(key, each), 0);
}

TEST_F(Registry, AHandleOfADeletedKeyStaysDeletedAndAClosedOneIsNone) {
    HKEY handle = nullptr;
    const auto expectOfEveryCall = [&](LSTATUS expected) {
        char name[9];
        const std::vector<LSTATUS> answers = {
            open(handle, ""),
            create(handle, "x"),
            erase(handle, ""),
            erase(handle, "x"),
            RegEnumKeyA(handle, 0, name, sizeof name),
            RegSetValueExA(handle, "x", 0, REG_BINARY, nullptr, 0),
            RegQueryValueExA(handle, "x", nullptr, nullptr, nullptr, nullptr),
            RegDeleteValueA(handle, "x"),
            RegFlushKey(handle),
        };
        EXPECT_EQ(answers, std::vector<LSTATUS>(answers.size(), expected));
    };
    expectOfEveryCall(6);
    create(key, "Gone", &handle);
    EXPECT_EQ(erase(handle, ""), 0);
    expectOfEveryCall(1018);
    EXPECT_EQ(create(key, "Gone"), 0);
    expectOfEveryCall(1018);
    for (const LSTATUS expected : {0, 6}) EXPECT_EQ(RegCloseKey(handle), expected);
    expectOfEveryCall(6);
    EXPECT_EQ(erase(key, "Gone"), 0);
}

#if !defined(_WIN32)

TEST_F(Registry, NoNameLeavesTheFolderOrMeetsAnother) {
    std::set<std::string> names = {"..", "a/../../b", "%41", "k-a", ".new", "key", " a ", "A~", "a%"};
    for (int i = 1; i < 256; ++i)
        if (i != '\\' && (i < 'a' || i > 'z')) names.emplace(1, static_cast<char>(i));
    for (const char end : {'a', 'b', '\xE9', '\xC9', '/'})
        for (const char front : {'x', '/'}) names.insert(std::string(254, front) + end);
    for (const std::string& name : names) {
        EXPECT_EQ(set(name, name), 0) << name;
        EXPECT_EQ(create(key, name), 0) << name;
    }
    for (const std::string& name : names) EXPECT_EQ(get(name), name);
    const Names listed = keysOf(key);
    EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()), names);
    const std::string longest(16382, '\x7F');
    EXPECT_EQ(set(longest + 'A', ""), 0);
    EXPECT_EQ(set(longest + "AA", ""), 87);
    EXPECT_EQ(create(key, longest), 87);
    EXPECT_EQ(set(std::string(200, 'l'), ""), 0);
    EXPECT_EQ(fs::status(folder / ("v-" + std::string(200, 'l'))).permissions(), fs::perms{0600});
    EXPECT_TRUE(fs::exists(folder / "k-a%2f..%2f..%2fb/key"));
}

TEST_F(Registry, ADamagedValueIsRefusedAndCanBeReplaced) {
    fs::create_directories(folder / "v-v/x");
    EXPECT_EQ(get("v"), "error 1015");
    EXPECT_EQ(set("v", "value"), 0);
    EXPECT_EQ(get("v"), "value");
}

// What a name of 201 times `L` has on disk; by sha256sum.
const std::string longForm =
    std::string(100, 'l') + "~d8437cec2f4aac3b1c1405ba758a1896a5035f3420c386c3c6ae53c72a115979";

// What may be in the place of a key; a damaged key is listed by the name that its folder's name spells.
TEST_F(Registry, ADamagedOrForeignEntryHidesNoKeyAndCanBeDeleted) {
    const struct {
        const char* what;
        void (*put)(const fs::path& at);  // a folder without a record
        bool isDamaged;                   // and no key else
    } cases[] = {
        {"an empty record", [](auto& at) { fill(at / "key", ""); }, true},
        {"a pipe as record", [](auto& at) { ::mkfifo((at / "key").c_str(), 0600); }, true},
        {"another's record", [](auto& at) { fs::copy(at / "../key", at / "key"); }, true},
        {"no record", [](auto&) {}, false},
    };
    create(key, "Z");
    const std::pair<std::string, std::string> names[] = {{"Sub", "sub"}, {std::string(201, 'L'), longForm}};
    for (const auto& [name, spelled] : names) {
        const fs::path entry = folder / ("k-" + spelled);
        for (const auto& each : cases) {
            create(key, name + "\\below");
            fill(entry / "v-v", "");
            fs::remove(entry / "key");
            each.put(entry);
            EXPECT_EQ(keysOf(key), each.isDamaged ? Names({spelled, "Z"}) : Names{"Z"}) << each.what;
            const std::string& reached = each.isDamaged ? spelled : name;
            EXPECT_EQ(open(key, reached), each.isDamaged ? 1015 : 2) << each.what;
            EXPECT_EQ(create(key, reached), each.isDamaged ? 1015 : 0) << each.what;
            EXPECT_EQ(fs::exists(entry / "v-v"), each.isDamaged) << each.what << ": its values";
            EXPECT_EQ(erase(key, reached), 0) << each.what;
            EXPECT_EQ(keysOf(key), Names{"Z"}) << each.what;
        }
    }
}

// Also below what is no key, to any depth, without following a link, and with what dead processes left.
TEST_F(Registry, AKeyIsDeletedWithAllThatIsInItsFolder) {
    for (const char* remains : {".made/x", ".old0/x"}) fs::create_directories(folder / remains);
    EXPECT_EQ(create(key, "Top"), 0);
    std::string deep = "k-top/k-c (copy)/";
    for (int depth = 0; depth < 500; ++depth) deep += "k-d/";
    fs::create_directories(folder / deep / "key");
    for (const char* file : {"k-top/v-v", "k-top/x"}) fill(folder / file, "");
    fill(data.file("notes.txt"), "someone's own");
    fs::create_directory_symlink(data.path(), folder / "k-top/k-link");
    const FewDescriptors few(64);
    EXPECT_EQ(erase(key, "Top"), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "the record of the key above";
    EXPECT_EQ(contentOf(data.file("notes.txt")), "someone's own");
}

TEST_F(Registry, AProcessKilledAtAnySystemCallLeavesWholeValuesAndKeys) {
    const std::string large(100000, 'n');
    int stops = 0;
    for (bool killed = true; killed; ++stops) {
        create(key, "sub");
        set("v", "old");
        killed = killedAtStop(stops, [&] {
            set("v", large);
            erase(key, "sub");
            create(key, "new");
        });
        const std::string value = get("v");
        EXPECT_EQ(value, value == "old" ? "old" : large) << stops;
        for (const char* name : {"sub", "new"}) {
            EXPECT_EQ(create(key, name), 0) << stops;
            EXPECT_EQ(erase(key, name), 0) << stops;
        }
        EXPECT_EQ(set("v", "again"), 0) << stops;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << stops << ": the record and v";
    }
    EXPECT_GT(stops, 60);
}

TEST_F(Registry, RootsAreThereWithoutAFolder) {
    EXPECT_EQ(open(HKEY_USERS, "x"), 2);
    EXPECT_EQ(keysOf(HKEY_USERS), Names{});
    EXPECT_EQ(RegFlushKey(HKEY_USERS), 0);
    RegQueryInfoKeyA(HKEY_USERS, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr);
    EXPECT_FALSE(fs::exists(data.path() / "tarnutil/registry/HKEY_USERS"));
    setEnvironment("XDG_DATA_HOME", "relative");  // doesn't count
    setEnvironment("HOME", data.file("home").c_str());
    EXPECT_EQ(create(HKEY_USERS, "x"), 0);
    EXPECT_TRUE(fs::exists(data.file("home/.local/share/tarnutil/registry/HKEY_USERS/k-x/key")));
    setEnvironment("HOME", nullptr);
    EXPECT_EQ(open(HKEY_USERS, "x"), 3);
}

#endif

}  // namespace
