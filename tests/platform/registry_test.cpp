// The registry: platform/registry/operations.cpp and registry_*.cpp, and the system's own on Windows.

#include <numeric>
#include <set>

#include "tests/process.h"
#include "tests/support.h"

using namespace std::string_literals;
using namespace tarntest;

namespace {

// A key of its own for each test, below the current user's root, in a data folder of its own.
struct Registry : testing::Test {
    static constexpr const char* home = "Software\\tarnutil-test";
    TemporaryFolder data{inMemory};
    std::filesystem::path folder =
        data.path() / "tarnutil/registry/HKEY_CURRENT_USER/k-software/k-tarnutil-test";
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
        DWORD size = room;
        const LSTATUS status = RegQueryInfoKeyA(again, text, &size, nullptr, nullptr, nullptr, nullptr,
                                                nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(text + std::to_string(status), room == 6 ? "Class0" : onWindows ? "Clas234" : "234");
    }
    RegCloseKey(again);
    EXPECT_EQ(RegDeleteKeyA(key, "SUB"), 0);
}

TEST_F(Registry, OddPathsAndHandlesAnswerTheirCodes) {
    HKEY closed = nullptr, result = key;
    create(key, "A\\B\\C");
    create(key, "A", &closed);
    for (const LSTATUS expected : {0, 6}) EXPECT_EQ(RegCloseKey(closed), expected);
    const auto answer = [&](const std::string& call, const auto& cells) {
        return std::to_string(call == "open"     ? open(key, cells[0])
                              : call == "create" ? create(key, cells[0])
                                                 : RegDeleteKeyA(key, cells[0].c_str()));
    };
    expectAnswers(R"(
open:A\B\C|0;a\\b\c\\|0;None|2;None\C|2;A/B|2;..|2;\A|161;|0
create:\A|161
delete:A\B|5;A\B\C|0;A\B\C|2;\A|161;A\B\|0;A|0)",
                  answer);
    EXPECT_EQ(RegDeleteKeyA(key, nullptr), 87);
    for (const HKEY wrong : {closed, reinterpret_cast<HKEY>(std::uintptr_t{0x1234}), HKEY{}})
        EXPECT_TRUE(open(wrong, "B") == 6 && RegCloseKey(wrong) == 6);
    RegOpenKeyExA(key, "None", 0, KEY_ALL_ACCESS, &result);
    EXPECT_TRUE(result == nullptr && RegDeleteKeyA(HKEY_CURRENT_USER, "") == 5);
    EXPECT_TRUE(RegCloseKey(HKEY_CURRENT_USER) == 0 && RegFlushKey(key) == 0);
}

TEST_F(Registry, ValuesKeepTheirBytesAndType) {
    std::string large(1U << 20, '\0');
    std::iota(large.begin(), large.end(), '\0');
    for (const DWORD type : {DWORD{REG_NONE}, DWORD{REG_DWORD}, DWORD{77}}) {
        for (const std::string& bytes : {""s, "ab"s, large}) {
            DWORD told = 99, size = 0;
            EXPECT_TRUE(set("Azimuth", bytes, type) == 0 && get("aZIMUTH") == bytes);
            RegQueryValueExA(key, "Azimuth", nullptr, &told, nullptr, &size);
            EXPECT_TRUE(told == type && size == bytes.size());
        }
    }
    EXPECT_EQ(set("", "default"), 0);
    for (const LSTATUS expected : {0, 2}) EXPECT_EQ(RegDeleteValueA(key, nullptr), expected);
    EXPECT_EQ(get(""), "error 2");
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 5), 998);
    EXPECT_TRUE(onWindows || set("Large", large + 'x') == 87);
}

// A name and the room for its value; what is answered: code, type, size and buffer.
TEST_F(Registry, BuffersThatAreTooSmallStayAndTellTheSize) {
    RegSetValueExA(key, "t", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcX"), 3);  // no NUL behind it
    expectAnswers("value:t|2|234 1 3 ####;t|3|0 1 3 abc#;t|4|0 1 3 abc;none|4|2 0 4 ####", [&](auto&,
                                                                                               auto& cells) {
        char buffer[] = "####";
        DWORD type = 99, room = static_cast<DWORD>(std::stoi(cells[1]));
        auto* const bytes = reinterpret_cast<BYTE*>(buffer);
        const LSTATUS code = RegQueryValueExA(key, cells[0].c_str(), nullptr, &type, bytes, &room);
        EXPECT_EQ(RegQueryValueExA(key, "t", nullptr, nullptr, bytes, nullptr), 87);
        return std::to_string(code) + " " + std::to_string(type) + " " + std::to_string(room) + " " + buffer;
    });
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
    RegDeleteKeyA(key, "Gone");
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
    EXPECT_EQ(RegDeleteKeyA(handle, "") + RegCloseKey(handle), 0);
    EXPECT_EQ(open(key, "Gone"), 2);
}

#if !defined(_WIN32)

TEST_F(Registry, NoNameLeavesTheFolderOrMeetsAnother) {
    std::set<std::string> names = {"..", "a/../../b", "%41", "k-a", ".new", "key", " a ", "A~", "a%"};
    for (int i = 1; i < 256; ++i)
        if (i != '\\' && (i < 'a' || i > 'z')) names.emplace(1, static_cast<char>(i));
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
        const std::string good = contentOf(file);
        const auto refused = [&] { return isKey ? open(key, "sub") == 1015 : get("v") == "error 1015"; };
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string flipped = good;
            flipped[i] ^= 0x10;
            for (const std::string& bytes :
                 {good.substr(0, i), flipped, good + std::string(i << 17 | 1, 'x')}) {
                fill(file, bytes);
                EXPECT_TRUE(refused()) << i << ' ' << bytes.size();
            }
        }
        std::filesystem::remove(file);
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        EXPECT_TRUE(refused());
        std::filesystem::remove(file);
        fill(data.file("elsewhere"), good);
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
    fill(folder / "notes.txt", "someone's own");
    EXPECT_TRUE(RegDeleteKeyA(HKEY_CURRENT_USER, home) == 5 && get("v") == "healed");
}

TEST_F(Registry, AProcessKilledAtAnySystemCallLeavesWholeValuesAndKeys) {
    const std::string large(100000, 'n');
    int stops = 0;
    for (bool killed = true; killed; ++stops) {
        create(key, "sub");
        set("v", "old");
        killed = killedAtStop(stops, [&] {
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
    setEnvironment("XDG_DATA_HOME", data.file("none").c_str());
    HKEY root = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_USERS, "", 0, KEY_ALL_ACCESS, &root), 0);
    for (const HKEY each : {HKEY_USERS, root})
        EXPECT_TRUE(open(each, "x") == 2 && keysOf(each).empty() && RegFlushKey(each) == 0);
    EXPECT_FALSE(std::filesystem::exists(data.file("none")));
    create(root, "x");
    EXPECT_EQ(open(HKEY_USERS, "X") + RegCloseKey(root), 0);
    setEnvironment("XDG_DATA_HOME", "relative");  // doesn't count
    setEnvironment("HOME", data.file("home").c_str());
    create(HKEY_USERS, "x");
    EXPECT_TRUE(std::filesystem::exists(data.file("home/.local/share/tarnutil/registry/HKEY_USERS/k-x/key")));
    setEnvironment("HOME", nullptr);
    EXPECT_EQ(open(HKEY_USERS, "x"), 3);
}

#endif

}  // namespace
