// Settings that say whether they are there: store/client_ini.cpp, store/registry_key.cpp.

#include "store/client_settings.h"

#include "store/settings.h"
#include "tests/support.h"

namespace {

using namespace std::string_literals;
using namespace tarntest;
using tarn::Ini;
using tarn::RegistryKey;
using tarn::SettingState;

TEST(IniTest, EmptyAbsentMalformedAndUnreadableAreFourThings) {
    const TemporaryFolder folder(inMemory);
    const std::string path = folder.file("client.ini");
    fill(path,
         "[s]\r\nempty=\r\nquotes=\"\"\r\none=1\r\ntwo=2\r\ntext=12abc\r\nsum=4142\r\nlast=-2147483648\r\n"
         "over=2147483648\r\nhex=0x1F\r\nodd=--5\r\nmissing=-286331154\r\nbytes=004100FF40\r\nnone=00\r\n");
    const Ini ini = Ini::at(path);
    const struct {
        const char* key;
        SettingState text, number, bytes;
        std::int32_t value;
        std::size_t size;
    } rows[] = {
        {"empty", SettingState::empty, SettingState::empty, SettingState::empty, 0, 0},
        {"ONE", SettingState::found, SettingState::found, SettingState::malformed, 1, 0},
        {"text", SettingState::found, SettingState::malformed, SettingState::malformed, 0, 0},
        {"last", SettingState::found, SettingState::found, SettingState::malformed, INT32_MIN, 0},
        {"over", SettingState::found, SettingState::malformed, SettingState::malformed, 0, 0},
        {"missing", SettingState::found, SettingState::found, SettingState::malformed, -286331154, 0},
        {"bytes", SettingState::found, SettingState::malformed, SettingState::found, 0, 4},
        {"none", SettingState::found, SettingState::found, SettingState::found, 0, 0},
        {"other", SettingState::absent, SettingState::absent, SettingState::absent, 0, 0},
    };
    for (const auto& each : rows) {
        EXPECT_EQ(ini.text("s", each.key).state, each.text) << each.key;
        EXPECT_EQ(ini.number("S", each.key).state, each.number) << each.key;
        EXPECT_EQ(ini.number("S", each.key).value, each.value) << each.key;
        EXPECT_EQ(ini.bytes("s", each.key).state, each.bytes) << each.key;
        EXPECT_EQ(ini.bytes("s", each.key).value.size(), each.size) << each.key;
    }
    EXPECT_EQ(ini.number("s", "other").value_or(800), 800);
    EXPECT_EQ(Ini::at(folder.file("none/x.ini")).text("s", "k").state, SettingState::absent);
    const HANDLE held = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (!onWindows) {
        EXPECT_EQ(ini.text("s", "one").state, SettingState::unreadable);
    }
    CloseHandle(held);
}

TEST(IniTest, WhatIsSetReadsBackAndWhatCouldntIsntSet) {
    const TemporaryFolder folder(inMemory);
    Ini ini = Ini::at(folder.file("client.ini"));
    for (const std::string& text :
         {" blanks "s, "\"quoted\""s, "'x'"s, "\""s, "a=b;c"s, std::string(255, 'x')}) {
        EXPECT_TRUE(ini.set("s", "k", text));
        EXPECT_EQ(ini.text("s", "k").value, text);
    }
    EXPECT_TRUE(ini.set("s", "k", ""));
    EXPECT_EQ(ini.text("s", "k").state, SettingState::empty);
    EXPECT_TRUE(ini.set("s", "n", -286331154));
    EXPECT_EQ(ini.number("s", "n").value, -286331154);
    const std::string before = contentOf(folder.file("client.ini"));
    for (const std::string& text : {"a\nb"s, "a\r"s, "a\0b"s}) {
        EXPECT_FALSE(ini.set("s", "k", text));
        EXPECT_FALSE(ini.set(text, "k", "v"));
        EXPECT_FALSE(ini.set("s", text, "v"));
    }
    for (const char* const key : {"", "a=b", "[k", ";k"}) EXPECT_FALSE(ini.set("s", key, "v")) << key;
    EXPECT_EQ(contentOf(folder.file("client.ini")), before);

    EXPECT_EQ(ini.keys("s"), (std::vector<std::string>{"k", "n"}));
    EXPECT_EQ(ini.sections(), std::vector<std::string>{"s"});
    for (int round = 0; round < 2; ++round) EXPECT_TRUE(ini.erase("s", "k"));
    EXPECT_EQ(ini.text("s", "k").state, SettingState::absent);
}

TEST(RegistryKeyTest, ValuesKeepTheirTypesAndJustTheirBytes) {
    const TemporaryFolder data(inMemory);
    setEnvironment("XDG_DATA_HOME", data.path().string().c_str());
    const char* const path = "Software\\tarnutil-face\\below";
    EXPECT_FALSE(RegistryKey::open(HKEY_CURRENT_USER, path));
    {
        RegistryKey key = RegistryKey::create(HKEY_CURRENT_USER, path);
        ASSERT_TRUE(key);
        EXPECT_TRUE(key.set("number", 0x80000000U));
        EXPECT_TRUE(key.set("text", "abc"));
        const std::string large(5000, 'x');
        EXPECT_TRUE(key.set("bytes", std::as_bytes(std::span(large))));
        EXPECT_FALSE(key.set("text", "a\0b"s));
        HKEY plain = nullptr;
        RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_ALL_ACCESS, &plain);
        RegSetValueExA(plain, "list", 0, REG_MULTI_SZ, reinterpret_cast<const BYTE*>("a\0bc\0"), 6);
        RegCloseKey(plain);
        RegistryKey moved = std::move(key);
        EXPECT_FALSE(key);
        EXPECT_EQ(moved.value("number").number(), 0x80000000U);
        EXPECT_EQ(moved.value("text").text(), "abc");
        EXPECT_EQ(moved.value("text").number(), std::nullopt);
        EXPECT_EQ(moved.value("bytes").bytes.size(), large.size());
        EXPECT_EQ(moved.value("list").texts(), (std::vector<std::string>{"a", "bc"}));
        EXPECT_EQ(moved.value("other").state, SettingState::absent);
        for (int round = 0; round < 2; ++round) EXPECT_TRUE(moved.erase("text"));
        EXPECT_FALSE(moved.value("text"));
        RegDeleteKeyA(HKEY_CURRENT_USER, path);
        EXPECT_EQ(moved.value("number").state, SettingState::unreadable);
        EXPECT_FALSE(moved.set("number", 1));
    }
    EXPECT_FALSE(RegistryKey().set("number", 1));
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\tarnutil-face");
    setEnvironment("XDG_DATA_HOME", nullptr);
}

}  // namespace
