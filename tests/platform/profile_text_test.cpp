// What the text of an ini file means: platform/profile/text.cpp and platform/profile/encoding.cpp, through
// platform/profile/operations.cpp, and the system's own on Windows.  fuzz/ini_file_fuzz.cpp has a plain reader.

#include "tests/platform/profile.h"

using namespace std::string_view_literals;
using tarntest::contentOf;
using tarntest::fill;
using tarntest::onWindows;
using ProfileText = tarntest::ProfileFiles;

namespace {

TEST_F(ProfileText, ReadsAnotherLineOrAnotherPartOfIt) {
    const struct {
        std::string_view text;
        const char* section;  // NULL lists the sections
        const char* key;      // NULL lists the keys
        std::string_view answer;
        bool sameOnWindows = true;
    } rows[] = {
        {"[Sec]t] junk\r\nKey=v\r\n", "sEC]T", "kEY", "v"},
        {" [ s ]\r\n \tk\t=\t v \t\r\n", " s ", "\tk ", "v"},
        {"[s]\r\n[S]\r\nk=v\r\n", "s", "k", "DEF"},
        {"[s]\n#k=a;b#c=d", "s", "#k", "a;b#c=d"},
        {"[s]\r\n\xE9=v\r\n\xC9=w\r\n", "s", "\xC9", "w"},
        {"[s]\r\nk=\"  in  \"\r\n", "s", "k", "  in  "},
        {"[s]\r\nk=' x '\r\n", "s", "k", " x "},
        {"[s]\r\nk=\"\"a\"\"\r\n", "s", "k", "\"a\""},
        {"[s]\r\nk=\"a'\r\n", "s", "k", "\"a'"},
        {"[s]\r\nk=\"\r\n", "s", "k", "\""},
        {"[s]\r\nb=v\r\nb=w\r\n;c=3\r\nx\r\n[t]\r\na=1\r\n", "s", nullptr, "b\0b\0"sv},
        {"[s]\r\n[t]\r\n[S]\r\n", nullptr, "ignored", "s\0t\0S\0"sv},
        {"\xEF\xBB\xBF[s]\r\nk=v\r\n", "s", "k", "v"},
        {"\xFF\xFE[\0s\0]\0\n\0k\0=\0\xE9\0\xAC\x20\0\4\n\0"sv, "s", "k", "\xE9\x80?"},
        {"\xFF\xFE[\0s\0]\0\n\0k\0=\0v\0w"sv, "s", "k", "v", false},  // half a unit at the end
        {"[s]\r\n;k=v\r\n", "s", ";k", "DEF", false},
        {"k=v\r\n[]\r\nk=w\r\n", "", "k", "w", false},
    };
    for (const auto& each : rows) {
        if (onWindows && !each.sameOnWindows) continue;
        fill(file, each.text);
        EXPECT_EQ(read(each.section, each.key), each.answer) << each.text;
    }
}

TEST_F(ProfileText, TakesOtherDigitsForANumber) {
    const auto number = [&] { return GetPrivateProfileIntA("s", "k", -42, file.c_str()); };
    EXPECT_EQ(number(), static_cast<UINT>(-42)) << "without a file";
    const struct {
        const char* value;
        int answer;
    } rows[] = {
        {"-5", -5},    {"+5", 5},      {" 7 ", 7},    {"\"8\"", 8},      {"010", 10},
        {"--5", 0},    {"0x1fF", 511}, {"0X1f", 0},   {"-0x10", -16},    {"0b102", 2},
        {"0o178", 15}, {"", -42},      {"\"\"", -42}, {"4294967297", 1},
    };
    for (const auto& each : rows) {
        fill(file, std::string("[s]\r\nk=").append(each.value));
        EXPECT_EQ(number(), static_cast<UINT>(each.answer)) << each.value;
    }
}

TEST_F(ProfileText, ChangesMoreThanTheLineItIsAskedTo) {
    const struct {
        std::string_view before;
        const char* section;
        const char* key;   // NULL removes the section
        const char* text;  // NULL removes the key
        std::string_view after;
        bool sameOnWindows = true;
    } rows[] = {
        {"", "s", "k", "v", "[s]\r\nk=v\r\n"},
        {"[S]\r\nKey=1\r\nk=2\r\n", "s", "kEY", "3", "[S]\r\nKey=3\r\nk=2\r\n"},
        {"[s]\r\nk\r\nk=1\r\n", "s", "k", "", "[s]\r\nk=\r\nk=1\r\n"},
        {"[s]\r\na=1\r\n;c\r\n[t]\r\n", "s", "", "\"v\"", "[s]\r\na=1\r\n;c\r\n=\"v\"\r\n[t]\r\n"},
        {"[s]\r\na=1", "t", "b", "2", "[s]\r\na=1\r\n[t]\r\nb=2\r\n"},
        {"[s]\r\nk=1\r\nk=2\r\n", "s", "K", nullptr, "[s]\r\nk=2\r\n"},
        {"[s]\r\na=1\r\n[t]\r\nk=2\r\n[s]\r\n", "s", nullptr, "ignored", "[t]\r\nk=2\r\n[s]\r\n"},
        {"[s]\r\n", " q ", " k ", " v ", "[s]\r\n[q]\r\nk= v \r\n", false},
        {"[s]\r\nk=  v \r\n", "s", "k", " w\n", "[s]\r\nk= w\n\r\n", false},
        {"; top\n[s]\n\na = 1 \n\n", "s", "A", "9", "; top\n[s]\n\na = 9 \n\n", false},
        {"[s]\na=1\n\n[t]\n", "s", "n", "2", "[s]\na=1\nn=2\n\n[t]\n", false},
        {"[s]\rk=1\r", "s", "n", "2", "[s]\rk=1\rn=2\r", false},
        {"[t]\n[s]\nk=1\n ;c\n\nx\n", "s", nullptr, nullptr, "[t]\n ;c\n\n", false},
        {"\xEF\xBB\xBF[s]\r\n", "s", "k", "v", "\xEF\xBB\xBF[s]\r\nk=v\r\n", false},
        {"\xFF\xFE\0\xD8[\0s\0]\0\n\0"sv, "s", "\x80", "\xE9",
         "\xFF\xFE\0\xD8[\0s\0]\0\n\0[\0s\0]\0\n\0\xAC\x20=\0\xE9\0\n\0"sv, false},
    };
    for (const auto& each : rows) {
        if (onWindows && !each.sameOnWindows) continue;
        fill(file, each.before);
        EXPECT_TRUE(write(each.section, each.key, each.text)) << each.before;
        EXPECT_EQ(contentOf(file), each.after) << each.before;
    }
}

}  // namespace
