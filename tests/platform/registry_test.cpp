// The registry: platform/registry.cpp and registry_*.cpp, and the system's own on Windows.

#include <numeric>
#include <set>
#include <sstream>

#include "tests/process.h"
#include "tests/support.h"

using namespace std::string_literals;
using tarntest::onWindows;

namespace {

// A key of its own for each test, below the current user's root, in a data folder of its own.
struct Registry : testing::Test {
    static constexpr const char* home = "Software\\tarnutil-test";
    tarntest::TemporaryFolder data{tarntest::inMemory};
    std::filesystem::path folder =
        data.path() / "tarnutil/registry/HKEY_CURRENT_USER/k-software/k-tarnutil-test";
    HKEY key = nullptr;

    Registry() {
        tarntest::setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
        create(HKEY_CURRENT_USER, home, &key);
    }
    ~Registry() override {
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_CURRENT_USER, home);
        tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    }

    // Creates a key, and closes it unless somebody takes it.
    static LSTATUS create(HKEY parent, const std::string& name, HKEY* taken = nullptr,
                          DWORD* disposition = nullptr, std::string classText = "Class") {
        HKEY result = nullptr;
        const LSTATUS status = RegCreateKeyExA(parent, name.c_str(), 0, classText.data(), 0, KEY_ALL_ACCESS,
                                               nullptr, &result, disposition);
        taken == nullptr ? void(RegCloseKey(result)) : void(*taken = result);
        return status;
    }
    static LSTATUS open(HKEY parent, const std::string& name) {
        HKEY result = nullptr;
        const LSTATUS status = RegOpenKeyExA(parent, name.c_str(), 0, KEY_ALL_ACCESS, &result);
        EXPECT_EQ(RegCloseKey(result), status == 0 ? 0 : 6) << "no key and yet a handle, or the other way";
        return status;
    }
    LSTATUS set(const std::string& name, const std::string& value, DWORD type = REG_BINARY) const {
        return RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(value.data()),
                              static_cast<DWORD>(value.size()));
    }
    // The value's bytes, or the error as text.
    [[nodiscard]] std::string get(const std::string& name) const {
        std::string value((1U << 20) + 1, '#');
        auto size = static_cast<DWORD>(value.size());
        const LSTATUS status = RegQueryValueExA(key, name.c_str(), nullptr, nullptr,
                                                reinterpret_cast<BYTE*>(value.data()), &size);
        return status == 0 ? value.substr(0, size) : "error " + std::to_string(status);
    }
    static std::vector<std::string> keysOf(HKEY parent) {
        std::vector<std::string> names;
        char name[300];
        for (DWORD i = 0; RegEnumKeyA(parent, i, name, sizeof name) == 0; ++i) names.emplace_back(name);
        return names;
    }
};

TEST_F(Registry, KeysKeepTheirFirstSpellingAndClass) {
    DWORD first = 0, second = 0;
    HKEY again = nullptr;
    create(key, "Sub", nullptr, &first);
    create(key, "sUB\\\\", &again, &second, onWindows ? "Class" : "Other");  // wine takes the second
    EXPECT_TRUE(first == REG_CREATED_NEW_KEY && second == REG_OPENED_EXISTING_KEY);
    EXPECT_EQ(keysOf(key), std::vector<std::string>{"Sub"});
    for (const DWORD room : {5U, 6U}) {
        char text[8] = {};
        DWORD length = room;
        const LSTATUS status = RegQueryInfoKeyA(again, text, &length, nullptr, nullptr, nullptr, nullptr,
                                                nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(status, room == 6 ? 0 : 234);
        EXPECT_STREQ(text, room == 6 ? "Class" : onWindows ? "Clas" : "");
    }
    RegCloseKey(again);
    EXPECT_EQ(RegDeleteKeyA(key, "SUB"), 0);
}

TEST_F(Registry, OddPathsAndHandlesAnswerTheirCodes) {
    HKEY closed = nullptr, result = key;
    create(key, "A\\B\\C");
    create(key, "A", &closed);
    for (const LSTATUS expected : {0, 6}) EXPECT_EQ(RegCloseKey(closed), expected);
    std::istringstream rows(
        R"(open A\B\C 0  open a\\b\c\\ 0  open None 2  open None\C 2  open A/B 2  open .. 2
        open \A 161  create \A 161  delete A\B 5  delete A\B\C 0  delete A\B\C 2  delete \A 161  delete A\B\ 0
        delete A 0)");
    LSTATUS code = 0;
    for (std::string call, name; rows >> call >> name >> code;) {
        const LSTATUS deleted = call == "delete" ? RegDeleteKeyA(key, name.c_str()) : 0;
        EXPECT_EQ(call == "open"     ? open(key, name)
                  : call == "create" ? create(key, name)
                                     : deleted,
                  code)
            << name;
    }
    EXPECT_TRUE(open(key, "") == 0 && RegDeleteKeyA(key, nullptr) == 87);
    for (const HKEY wrong : {closed, reinterpret_cast<HKEY>(std::uintptr_t{0x1234}), HKEY{}})
        EXPECT_TRUE(open(wrong, "B") == 6 && RegCloseKey(wrong) == 6);
    RegOpenKeyExA(key, "None", 0, KEY_ALL_ACCESS, &result);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, ""), 5);
    EXPECT_TRUE(RegCloseKey(HKEY_CURRENT_USER) == 0 && RegFlushKey(key) == 0);
}

TEST_F(Registry, ValuesKeepTheirBytesAndType) {
    std::string large(1U << 20, '\0');
    std::iota(large.begin(), large.end(), '\0');
    for (const DWORD type : {DWORD{REG_NONE}, DWORD{REG_DWORD}, DWORD{77}}) {
        for (const std::string& bytes : {""s, "ab"s, large}) {
            DWORD told = 99, size = 0;
            EXPECT_EQ(set("Value", bytes, type), 0);
            EXPECT_TRUE(get("vALUE") == bytes);
            EXPECT_EQ(RegQueryValueExA(key, "Value", nullptr, &told, nullptr, &size), 0);
            EXPECT_TRUE(told == type && size == bytes.size());
        }
    }
    EXPECT_EQ(set("", "default"), 0);
    for (const LSTATUS expected : {0, 2}) EXPECT_EQ(RegDeleteValueA(key, nullptr), expected);
    EXPECT_EQ(get(""), "error 2");
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 5), 998);
    EXPECT_TRUE(onWindows || set("Large", large + 'x') == 87);
}

TEST_F(Registry, BuffersThatAreTooSmallStayAndTellTheSize) {
    RegSetValueExA(key, "t", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcX"), 3);
    std::istringstream rows("t 2 234 1 3 ####  t 3 0 1 3 abc#  t 4 0 1 3 abc  none 4 2 0 4 ####");
    DWORD room = 0, type = 0, size = 0;
    LSTATUS code = 0;
    for (std::string name, kept; rows >> name >> room >> code >> type >> size >> kept;) {
        BYTE buffer[] = "####";
        DWORD told = 99;
        EXPECT_EQ(RegQueryValueExA(key, name.c_str(), nullptr, &told, buffer, &room), code) << name;
        EXPECT_TRUE(told == type && room == size) << name << told << ' ' << room;
        EXPECT_STREQ(reinterpret_cast<const char*>(buffer), kept.c_str()) << "a NUL where there is room";
        EXPECT_EQ(RegQueryValueExA(key, "t", nullptr, nullptr, buffer, nullptr), 87);
    }
}

TEST_F(Registry, KeysAreCountedAndListedInTheOrderOfTheirFoldedNames) {
    std::vector<std::string> expected;
    for (int i = 10; i < 50; ++i) expected.push_back((i % 2 == 0 ? "n" : "N") + std::to_string(i));
    for (auto each = expected.rbegin(); each != expected.rend(); ++each) create(key, *each);
    set("a", "12345");
    set("long name", "");
    EXPECT_EQ(keysOf(key), expected);
    char small[3];
    EXPECT_TRUE(RegEnumKeyA(key, 0, small, 3) == 234 && RegEnumKeyA(key, 40, small, 3) == 259);
    DWORD keys = 0, longest = 0, values = 0, name = 0, size = 0;
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &keys, &longest, nullptr, &values, &name, &size, nullptr,
                     nullptr);
    EXPECT_EQ((std::vector<DWORD>{keys, longest, values, name, size}), (std::vector<DWORD>{40, 3, 2, 9, 5}));
    for (const std::string& each : expected) {
        EXPECT_EQ(keysOf(key).front(), each) << "a stale list";
        EXPECT_EQ(RegDeleteKeyA(key, each.c_str()), 0);
    }
}

TEST_F(Registry, AHandleOfADeletedKeyStaysDeletedWhenItsNameIsUsedAgain) {
    HKEY handle = nullptr;
    create(key, "Gone", &handle);
    EXPECT_EQ(RegDeleteKeyA(key, "Gone"), 0);
    for (int round = 0; round < 2; ++round) {
        char name[9];
        for (const LSTATUS code :
             {open(handle, ""), open(handle, "x"), RegDeleteKeyA(handle, "x"), RegDeleteKeyA(handle, ""),
              create(handle, "x"), RegEnumKeyA(handle, 0, name, sizeof name),
              RegSetValueExA(handle, "x", 0, REG_BINARY, nullptr, 0),
              RegQueryValueExA(handle, "x", nullptr, nullptr, nullptr, nullptr), RegDeleteValueA(handle, "x"),
              RegFlushKey(handle)})
            EXPECT_EQ(code, 1018);
        create(key, "Gone");
    }
    EXPECT_EQ(RegCloseKey(handle), 0);
    create(key, "Gone", &handle);
    EXPECT_EQ(RegDeleteKeyA(handle, ""), 0);
    RegCloseKey(handle);
    EXPECT_EQ(open(key, "Gone"), 2);
}

#if !defined(_WIN32)

TEST_F(Registry, NoNameLeavesTheFolderOrMeetsAnother) {
    std::set<std::string> names = {"..", "a/../../b", "%41", "k-a", ".new", "key", " a ", "A~", "a%"};
    for (int i = 1; i < 256; ++i) {
        if (i != '\\' && (i < 'a' || i > 'z')) names.emplace(1, static_cast<char>(i));
    }
    for (const char end : {'a', 'b', '\xE9', '\xC9', '/'})
        for (const char front : {'x', '/'}) names.insert(std::string(254, front) + end);
    for (const std::string& name : names) EXPECT_EQ(set(name, name) + create(key, name), 0);
    for (const std::string& name : names) EXPECT_EQ(get(name), name);
    const std::vector<std::string> listed = keysOf(key);
    EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()), names);
    const std::string longest(16382, '\x7F');
    for (const char* end : {"A", "b", "\\"}) EXPECT_EQ(set(longest + end, end), 0);
    EXPECT_EQ(get(longest + 'a'), "A");
    EXPECT_TRUE(set(longest + "cd", "") == 87 && create(key, longest) == 87);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string file = entry.path().filename();
        EXPECT_TRUE(file == "key" || file[1] == '-') << file;
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(data.path()), {}), 1);
}

TEST_F(Registry, DamagedAndForeignFilesMakeACallFail) {
    set("v", "value", REG_SZ);
    create(key, "sub");
    for (const bool isKey : {false, true}) {
        const std::string file = folder / (isKey ? "k-sub/key" : "v-v");
        const std::string good = tarntest::contentOf(file);
        const auto refused = [&] { return isKey ? open(key, "sub") == 1015 : get("v") == "error 1015"; };
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string flipped = good;
            flipped[i] ^= 0x10;
            for (const std::string& bytes :
                 {good.substr(0, i), flipped, good + std::string(i << 17 | 1, 'x')}) {
                tarntest::fill(file, bytes);
                EXPECT_TRUE(refused()) << i << ' ' << bytes.size();
            }
        }
        std::filesystem::remove(file);
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        EXPECT_TRUE(refused());
        std::filesystem::remove(file);
        tarntest::fill(data.file("elsewhere"), good);
        std::filesystem::create_symlink(data.file("elsewhere"), file);
        EXPECT_TRUE(refused());
    }
    EXPECT_EQ(set("v", "healed"), 0);
    std::filesystem::create_directory_symlink(data.path(), folder / "k-link");
    EXPECT_EQ(open(key, "link"), 1015);
    char name[9];
    EXPECT_EQ(RegEnumKeyA(key, 0, name, 9), 1015);
    std::filesystem::create_directory(folder / "k-empty");
    EXPECT_EQ(open(key, "empty"), 2) << "a folder without a record is no key";
    tarntest::fill(folder / "notes.txt", "someone's own");
    EXPECT_TRUE(RegDeleteKeyA(HKEY_CURRENT_USER, home) == 5 && get("v") == "healed");
}

TEST_F(Registry, AProcessKilledAtAnySystemCallLeavesWholeValuesAndKeys) {
    const std::string large(100000, 'n');
    int stops = 0;
    for (bool killed = true; killed; ++stops) {
        create(key, "sub");
        set("v", "old");
        killed = tarntest::killedAtStop(stops, [&] {
            set("v", large);
            RegDeleteKeyA(key, "sub");
            create(key, "new");
        });
        const std::string value = get("v");
        EXPECT_TRUE(value == "old" || value == large) << stops;
        for (const char* name : {"sub", "new"}) {
            EXPECT_EQ(open(key, name) & ~2, 0) << stops;
            EXPECT_TRUE(create(key, name) == 0 && RegDeleteKeyA(key, name) == 0) << stops;
        }
        EXPECT_TRUE(keysOf(key).empty() && set("v", "again") == 0) << stops;
        EXPECT_FALSE(std::filesystem::exists(folder / ".new"));
    }
    EXPECT_GT(stops, 60);
}

TEST_F(Registry, TwoWritersLoseNothingAndAReaderSeesNoHalf) {
    const auto large = [](const std::string& round) { return std::string(20000, round.back()); };
    set("shared", large("0"));
    tarntest::twoWritersAndAReader(
        [&](const std::string& name, const std::string& round) {
            EXPECT_TRUE(set(name, round) == 0 && get(name) == round && set("shared", large(round)) == 0);
        },
        [&](const std::string& name) {
            const std::string shared = get("shared"), own = get(name);
            EXPECT_EQ(shared, large(shared));
            return own == "error 2" ? "0" : own;
        });
}

TEST_F(Registry, RootsAreThereWithoutAFolder) {
    tarntest::setEnvironment("XDG_DATA_HOME", data.file("none").c_str());
    HKEY root = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "", 0, KEY_ALL_ACCESS, &root), 0);
    for (const HKEY each : {HKEY_USERS, root}) {
        EXPECT_EQ(open(each, "x"), 2);
        EXPECT_TRUE(keysOf(each).empty() && RegFlushKey(each) == 0);
    }
    EXPECT_FALSE(std::filesystem::exists(data.file("none")));
    create(root, "x");
    EXPECT_EQ(open(HKEY_USERS, "X"), 0);
    RegCloseKey(root);
    tarntest::setEnvironment("XDG_DATA_HOME", "relative");  // doesn't count
    tarntest::setEnvironment("HOME", data.file("home").c_str());
    create(HKEY_USERS, "x");
    EXPECT_TRUE(std::filesystem::exists(data.file("home/.local/share/tarnutil/registry/HKEY_USERS/k-x/key")));
    tarntest::setEnvironment("HOME", nullptr);
    EXPECT_EQ(open(HKEY_USERS, "x"), 3);
}

#endif

}  // namespace
