// The registry: platform/registry/operations.cpp, store.cpp, folders.cpp, record.cpp, names.cpp, sha256.cpp, and
// the system's own on Windows.

#include <functional>
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
        make(HKEY_CURRENT_USER, home, key);
    }
    ~Registry() override {
        RegCloseKey(key);
        RegDeleteKeyA(HKEY_CURRENT_USER, home);
        setEnvironment("XDG_DATA_HOME", nullptr);
    }

    // Creates a key and gives out its handle, which the caller closes.
    static LSTATUS make(HKEY parent, const std::string& name, HKEY& made, DWORD* disposition = nullptr,
                        std::string classText = "Class") {
        return RegCreateKeyExA(parent, name.c_str(), 0, classText.data(), 0, KEY_ALL_ACCESS, nullptr, &made,
                               disposition);
    }

    // What the calls answer for a name; no handle stays open.
    static LSTATUS create(HKEY parent, const std::string& name) {
        HKEY made = nullptr;
        const LSTATUS status = make(parent, name, made);
        RegCloseKey(made);
        return status;
    }
    static LSTATUS open(HKEY parent, const std::string& name) {
        HKEY result = nullptr;
        const LSTATUS status = RegOpenKeyExA(parent, name.c_str(), 0, KEY_ALL_ACCESS, &result);
        EXPECT_EQ(RegCloseKey(result), status == 0 ? 0 : 6) << "no key and yet a handle, or the other way";
        return status;
    }
    static LSTATUS erase(HKEY parent, const std::string& name) { return RegDeleteKeyA(parent, name.c_str()); }

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

    using Names = std::vector<std::string>;
    static Names keysOf(HKEY parent) {
        Names names;
        char name[300];
        for (DWORD i = 0; RegEnumKeyA(parent, i, name, sizeof name) == 0; ++i) names.emplace_back(name);
        return names;
    }
};

TEST_F(Registry, KeysKeepTheirFirstSpellingAndClass) {
    DWORD first = 0, second = 0;
    HKEY again = nullptr;
    make(key, "Sub", again, &first);
    RegCloseKey(again);
    make(key, "sUB\\\\", again, &second, onWindows ? "Class" : "Other");  // wine takes the second
    EXPECT_EQ(first, DWORD{REG_CREATED_NEW_KEY});
    EXPECT_EQ(second, DWORD{REG_OPENED_EXISTING_KEY});
    EXPECT_EQ(keysOf(key), Names{"Sub"});
    char text[8] = {};
    for (const DWORD room : {5U, 6U}) {
        DWORD size = room;
        const LSTATUS status = RegQueryInfoKeyA(again, text, &size, nullptr, nullptr, nullptr, nullptr,
                                                nullptr, nullptr, nullptr, nullptr, nullptr);
        EXPECT_EQ(status, room == 6 ? 0 : 234);
        EXPECT_EQ(size, 5U);
    }
    EXPECT_STREQ(text, "Class");
    RegCloseKey(again);
    EXPECT_EQ(erase(key, "SUB"), 0);
}

TEST_F(Registry, OddPathsAnswerTheirCodes) {
    create(key, "A\\B\\C");
    const struct {
        LSTATUS (*call)(HKEY, const std::string&);
        std::string path;
        LSTATUS expected;
    } steps[] = {
        {open, "a\\\\b\\c\\\\", 0},  // of `\`, only the one in front counts
        {open, "\\A", 161},         {open, "None\\C", 2},  {open, "A/B", 2},      {open, "..", 2},
        {create, "\\A", 161},       {erase, "\\A", 161},   {erase, "None\\C", 2}, {erase, "A\\B", 5},
        {erase, "A\\B\\C", 0},      {erase, "A\\B\\C", 2}, {erase, "A\\B\\", 0},
    };
    for (const auto& step : steps) EXPECT_EQ(step.call(key, step.path), step.expected) << step.path;
    EXPECT_EQ(RegDeleteKeyA(key, nullptr), 87);
    EXPECT_EQ(erase(HKEY_CURRENT_USER, ""), 5);
    HKEY result = key;
    RegOpenKeyExA(key, "None", 0, KEY_ALL_ACCESS, &result);
    EXPECT_EQ(result, nullptr);
    EXPECT_EQ(erase(key, "A"), 0);
}

TEST_F(Registry, AHandleThatIsNotOpenIsRefusedAndARootStaysOpen) {
    HKEY closed = nullptr;
    make(key, "", closed);
    for (const LSTATUS expected : {0, 6}) EXPECT_EQ(RegCloseKey(closed), expected);
    for (const HKEY wrong : {closed, reinterpret_cast<HKEY>(std::uintptr_t{0x1234}), HKEY{}})
        EXPECT_EQ(open(wrong, ""), 6);
    EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), 0);
    EXPECT_EQ(open(HKEY_CURRENT_USER, home), 0);
}

TEST_F(Registry, ValuesKeepTheirBytesAndType) {
    std::string large(1U << 20, '\0');
    std::iota(large.begin(), large.end(), '\0');
    for (const DWORD type : {DWORD{REG_NONE}, DWORD{REG_DWORD}, DWORD{77}}) {
        for (const std::string& bytes : {""s, "ab"s, large}) {
            DWORD storedType = 99;
            EXPECT_EQ(set("Azimuth", bytes, type), 0);
            EXPECT_EQ(get("aZIMUTH"), bytes);
            RegQueryValueExA(key, "Azimuth", nullptr, &storedType, nullptr, nullptr);
            EXPECT_EQ(storedType, type);
        }
    }
    EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_BINARY, nullptr, 5), 998);
    EXPECT_EQ(set("Large", large + 'x'), onWindows ? 0 : 87);
    EXPECT_EQ(set("", "default"), 0);
    EXPECT_EQ(get(""), "default");
    for (const LSTATUS expected : {0, 2}) EXPECT_EQ(RegDeleteValueA(key, nullptr), expected);
    EXPECT_EQ(get(""), "error 2");
}

TEST_F(Registry, BuffersThatAreTooSmallStayAndTheSizeIsAnswered) {
    set("b", "abc", REG_BINARY);
    RegSetValueExA(key, "t", 0, REG_SZ, reinterpret_cast<const BYTE*>("abcX"), 3);  // no NUL behind it
    const struct {
        const char* name;
        DWORD room;
        LSTATUS code;
        DWORD type, size;
        std::string buffer;
    } cases[] = {
        {"t", 2, 234, 1, 3, "####"}, {"t", 3, 0, 1, 3, "abc#"},    {"t", 4, 0, 1, 3, "abc\0"s},
        {"b", 4, 0, 3, 3, "abc#"},   {"none", 4, 2, 0, 4, "####"},
    };
    for (const auto& each : cases) {
        std::string buffer = "####";
        auto* const bytes = reinterpret_cast<BYTE*>(buffer.data());
        DWORD type = 99, size = each.room;
        EXPECT_EQ(RegQueryValueExA(key, each.name, nullptr, &type, bytes, &size), each.code) << each.room;
        EXPECT_EQ(type, each.type) << each.name << each.room;
        EXPECT_EQ(size, each.size) << each.name << each.room;
        EXPECT_EQ(buffer, each.buffer) << each.name << each.room;
        EXPECT_EQ(RegQueryValueExA(key, "t", nullptr, nullptr, bytes, nullptr), 87);
    }
}

TEST_F(Registry, KeysAreCountedAndListedInTheOrderOfTheirFoldedNames) {
    Names expected;
    for (int i = 10; i < 50; ++i) expected.push_back((i % 2 == 0 ? "n" : "N") + std::to_string(i));
    for (auto each = expected.rbegin(); each != expected.rend(); ++each) create(key, *each);
    set("a", "12345");
    set("long name", "");
    EXPECT_EQ(keysOf(key), expected);
    char small[3];
    EXPECT_EQ(RegEnumKeyA(key, 0, small, sizeof small), 234);
    EXPECT_EQ(RegEnumKeyA(key, 40, small, sizeof small), 259);
    std::array<DWORD, 5> counts{};
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, &counts[0], &counts[1], nullptr, &counts[2], &counts[3],
                     &counts[4], nullptr, nullptr);
    EXPECT_EQ(counts, (std::array<DWORD, 5>{40, 3, 2, 9, 5})) << "keys, longest; values, longest, largest";
    for (const std::string& each : expected) {
        EXPECT_EQ(keysOf(key).front(), each) << "a stale list";
        EXPECT_EQ(erase(key, each), 0);
    }
}

TEST_F(Registry, AHandleOfADeletedKeyStaysDeletedWhenItsNameIsUsedAgain) {
    HKEY handle = nullptr;
    make(key, "Gone", handle);
    EXPECT_EQ(erase(key, "Gone"), 0);
    for (int round = 0; round < 2; ++round) {
        char name[9];
        const std::pair<const char*, LSTATUS> answers[] = {
            {"open", open(handle, "")},
            {"open below", open(handle, "x")},
            {"create", create(handle, "x")},
            {"delete", erase(handle, "")},
            {"delete below", erase(handle, "x")},
            {"list", RegEnumKeyA(handle, 0, name, sizeof name)},
            {"set", RegSetValueExA(handle, "x", 0, REG_BINARY, nullptr, 0)},
            {"get", RegQueryValueExA(handle, "x", nullptr, nullptr, nullptr, nullptr)},
            {"delete a value", RegDeleteValueA(handle, "x")},
            {"flush", RegFlushKey(handle)},
        };
        for (const auto& [call, code] : answers) EXPECT_EQ(code, 1018) << call;
        EXPECT_EQ(create(key, "Gone"), 0);
    }
    EXPECT_EQ(RegCloseKey(handle), 0);
    make(key, "Gone", handle);
    EXPECT_EQ(erase(handle, ""), 0);
    EXPECT_EQ(RegCloseKey(handle), 0);
    EXPECT_EQ(open(key, "Gone"), 2);
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
    for (const char* end : {"A", "b", "\\"}) EXPECT_EQ(set(longest + end, end), 0);
    EXPECT_EQ(get(longest + 'a'), "A");
    EXPECT_EQ(set(longest + "cd", ""), 87);
    HKEY made = key;
    EXPECT_EQ(make(key, longest, made), 87);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(set(std::string(200, 'l'), ""), 0);
    EXPECT_TRUE(fs::exists(folder / ("v-" + std::string(200, 'l'))));
    EXPECT_EQ(set(std::string(201, 'L'), ""), 0);
    const char* const digest =
        "~d8437cec2f4aac3b1c1405ba758a1896a5035f3420c386c3c6ae53c72a115979";  // by sha256sum
    EXPECT_TRUE(fs::exists(folder / ("v-" + std::string(100, 'l') + digest)));
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string file = entry.path().filename();
        EXPECT_EQ(file[1], file == "key" ? 'e' : '-') << file;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(data.path()), {}), 1);
}

TEST_F(Registry, OnlyTheLastKeyOfAPathGetsTheClass) {
    create(key, "Above\\Below");
    EXPECT_EQ(contentOf(folder / "k-above/key").find("Class"), std::string::npos);
    EXPECT_NE(contentOf(folder / "k-above/k-below/key").find("Class"), std::string::npos);
}

TEST_F(Registry, TheTimeOfTheLastWriteCountsFrom1601) {
    const std::timespec billionSeconds{1'000'000'000, 700};  // from 1970 to 2001
    const std::timespec times[] = {billionSeconds, billionSeconds};
    ASSERT_EQ(::utimensat(AT_FDCWD, folder.c_str(), times, 0), 0);
    FILETIME time{};
    RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr, &time);
    const std::uint64_t ticks = std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
    EXPECT_EQ(ticks, 116'444'736'000'000'000 + 10'000'000'000'000'007U);
}

TEST_F(Registry, AListIsNotKeptWhereTheTimeOfItsFolderShowsNoChange) {
    const auto later = fs::file_time_type::clock::now() + std::chrono::hours(1);
    for (const Names& expected : {Names{"a"}, Names{"a", "b"}}) {
        create(key, expected.back());
        fs::last_write_time(folder, later);
        EXPECT_EQ(keysOf(key), expected);
    }
}

// One that is cut anywhere, has a wrong bit, is too long, or is no file.
TEST_F(Registry, ADamagedFileIsRefused) {
    set("v", "value", REG_SZ);
    create(key, "sub");
    const std::pair<fs::path, std::function<bool()>> files[] = {
        {folder / "v-v", [&] { return get("v") == "error 1015"; }},
        {folder / "k-sub/key", [&] { return open(key, "sub") == 1015; }},
    };
    for (const auto& [file, refused] : files) {
        const std::string good = contentOf(file);
        for (std::size_t i = 0; i < good.size(); ++i) {
            std::string flipped = good;
            flipped[i] ^= 0x10;
            for (const std::string& bytes :
                 {good.substr(0, i), flipped, good + std::string(i << 17 | 1, 'x')}) {
                fill(file, bytes);
                EXPECT_TRUE(refused()) << i << ' ' << bytes.size();
            }
        }
        fs::remove(file);
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        EXPECT_TRUE(refused()) << "a pipe";
        fs::remove(file);
        fill(data.file("elsewhere"), good);
        fs::create_symlink(data.file("elsewhere"), file);
        EXPECT_TRUE(refused()) << "a link";
        fs::remove(file);
        fs::create_directories(file / "folder");
        EXPECT_TRUE(refused()) << "a folder";
    }
    EXPECT_EQ(set("v", "healed"), 0);
    EXPECT_EQ(get("v"), "healed");
}

fs::path cleared(const fs::path& entry) {
    fs::remove_all(entry);
    return entry;
}

// What may be in the place of a key; a damaged key is listed by the name that its folder's name spells.
TEST_F(Registry, ADamagedOrForeignEntryHidesNoKeyAndCanBeDeleted) {
    const struct {
        const char* what;
        void (*put)(const fs::path& at);  // a folder without a record
        bool isListed;
        LSTATUS opened, created;
    } cases[] = {
        {"an empty record", [](auto& at) { fill(at / "key", ""); }, true, 1015, 1015},
        {"a folder as record", [](auto& at) { fs::create_directories(at / "key/x"); }, true, 1015, 1015},
        {"another's record", [](auto& at) { fs::copy(at / "../key", at / "key"); }, true, 1015, 1015},
        {"no record", [](auto&) {}, false, 2, 0},
        {"a file", [](auto& at) { fill(cleared(at), ""); }, false, 2, 0},
        {"a link", [](auto& at) { fs::create_symlink(".", cleared(at)); }, false, 2, 0},
    };
    for (const std::string& name : {"Sub"s, std::string(250, 'N')}) {
        for (const auto& each : cases) {
            create(key, name + "\\below");
            fs::path entry;
            for (const auto& found : fs::directory_iterator(folder))
                if (found.is_directory()) entry = found.path();
            fill(entry / "v-v", "");
            fs::remove(entry / "key");
            each.put(entry);
            create(key, "Z");
            const Names listed = keysOf(key);
            EXPECT_EQ(listed.size(), each.isListed ? 2U : 1U) << each.what;
            EXPECT_EQ(listed.back(), "Z") << each.what;
            const std::string reached = each.isListed ? listed.front() : name;
            EXPECT_EQ(open(key, reached), each.opened) << each.what;
            EXPECT_EQ(create(key, reached), each.created) << each.what;
            EXPECT_EQ(fs::exists(entry / "v-v"), each.created != 0) << each.what << ": its values";
            EXPECT_EQ(erase(key, reached), 0) << each.what;
            EXPECT_EQ(keysOf(key), Names{"Z"}) << each.what;
            EXPECT_FALSE(fs::exists(entry)) << each.what;
            erase(key, "Z");
        }
    }
}

// Also below what is no key, to any depth, without following a link, and with what dead processes left beside
// it.
TEST_F(Registry, AKeyIsDeletedWithAllThatIsInItsFolder) {
    std::string deep = "k-top/";
    for (int depth = 0; depth < 500; ++depth) deep += "k-d/";
    for (const char* remains : {".made/x", ".old0/x"}) fs::create_directories(folder / remains);
    EXPECT_EQ(create(key, "Top"), 0);
    fs::create_directories(folder / deep / "key");
    fs::create_directories(folder / "k-top/k-c (copy)");
    fill(folder / "k-top/k-c (copy)/key", "");
    for (const char* file : {"k-top/v-v", "k-top/x"}) fill(folder / file, "");
    fill(data.file("notes.txt"), "someone's own");
    fs::create_directory_symlink(data.path(), folder / "k-top/k-link");
    const FewDescriptors few(64);
    EXPECT_EQ(erase(key, "Top"), 0);
    EXPECT_FALSE(fs::exists(folder / "k-top"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "the record of the key above";
    EXPECT_EQ(contentOf(data.file("notes.txt")), "someone's own");
}

TEST_F(Registry, WhatHasTheLocksNameIsRemovedUnlessItIsAFolderWithSomethingInIt) {
    const fs::path lock = folder / ".new";
    fs::create_symlink("nowhere", lock);
    EXPECT_EQ(set("v", "a link"), 0);
    fs::create_directory(lock);
    EXPECT_EQ(create(key, "a folder"), 0);
    ASSERT_EQ(::mkfifo(lock.c_str(), 0600), 0);
    EXPECT_EQ(erase(key, "a folder"), 0);
    fs::create_directories(lock / "something");
    EXPECT_NE(set("v", "a full folder"), 0);
    EXPECT_EQ(get("v"), "a link");
    fs::remove_all(lock);
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
        EXPECT_EQ(keysOf(key), Names{}) << stops;
        EXPECT_EQ(set("v", "again"), 0) << stops;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << stops << ": the record and v";
    }
    EXPECT_GT(stops, 60);
}

TEST_F(Registry, AKeyIsMadeAlsoWhenAnotherProcessDeletesOneOnTheWayToIt) {
    int stops = 0, deleted = 0;
    for (bool stopped = true; stopped; ++stops) {
        create(key, "middle");
        stopped = atStop(
            stops, [&] { EXPECT_EQ(create(key, "middle\\sub"), 0); },
            [&](pid_t child) {
                const bool isLocked = fs::exists(folder / ".new") || fs::exists(folder / "k-middle/.new");
                if (!isLocked && erase(key, "middle") == 0) ++deleted;
                ::ptrace(PTRACE_DETACH, child, nullptr, nullptr);
                EXPECT_EQ(waitFor(child), 0) << stops;
            });
        EXPECT_EQ(erase(key, "middle\\sub"), 0) << stops;
        EXPECT_EQ(erase(key, "middle"), 0) << stops;
    }
    EXPECT_GT(deleted, 10);
}

TEST_F(Registry, TwoWritersLoseNothingAndAReaderSeesNoHalf) {
    const auto large = [](const std::string& round) { return std::string(20000, round.back()); };
    set("shared", large("0"));
    tarntest::twoWritersAndAReader(
        [&](const std::string& name, const std::string& round) {
            EXPECT_EQ(set(name, round), 0);
            EXPECT_EQ(get(name), round);
            EXPECT_EQ(set("shared", large(round)), 0);
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
    for (const HKEY each : {HKEY_USERS, root}) {
        EXPECT_EQ(open(each, "x"), 2);
        EXPECT_EQ(keysOf(each), Names{});
        EXPECT_EQ(RegFlushKey(each), 0);
    }
    EXPECT_FALSE(fs::exists(data.file("none")));
    EXPECT_EQ(create(root, "x"), 0);
    EXPECT_EQ(open(HKEY_USERS, "X"), 0);
    EXPECT_EQ(keysOf(HKEY_USERS), Names{"x"});
    EXPECT_EQ(RegSetValueExA(root, "v", 0, REG_BINARY, nullptr, 0), 0);
    EXPECT_EQ(RegQueryValueExA(HKEY_USERS, "V", nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_TRUE(fs::exists(data.file("none/tarnutil/registry/HKEY_USERS/v-v")));
    EXPECT_EQ(RegCloseKey(root), 0);
    setEnvironment("XDG_DATA_HOME", "relative");  // doesn't count
    setEnvironment("HOME", data.file("home").c_str());
    EXPECT_EQ(create(HKEY_USERS, "x"), 0);
    EXPECT_TRUE(fs::exists(data.file("home/.local/share/tarnutil/registry/HKEY_USERS/k-x/key")));
    setEnvironment("HOME", nullptr);
    EXPECT_EQ(open(HKEY_USERS, "x"), 3);
}

#endif

}  // namespace
