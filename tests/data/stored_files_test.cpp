// Reads the files beside this one, which no test and no tool rewrites, and has the library write them again:
// store/, engine/text_file.cpp, engine/indexed_file.cpp, present/menu_parser.cpp,
// platform/registry/record.cpp, platform/drawing/dib.cpp.

#include "engine/engine_data.h"
#include "present/menu.h"
#include "present/screen.h"
#include "store/file_tools.h"
#include "store/index_data_file.h"
#include "store/settings.h"
#include "store/uu_codec.h"
#include "tests/values.h"

namespace {

using namespace tarntest;
using namespace std::string_literals;

std::string stored(const std::string& name) {
    return TARN_STORED_FILES "/" + name;
}

Owned longs(std::int32_t first, std::int32_t row, std::int32_t second) {
    return columnOf({{0, number(tagLong, first)}, {row, number(tagLong, second)}});
}

// A value of 8 bytes that are no number of their own.
Owned eightBytes(std::int32_t tag, std::uint64_t bytes) {
    Owned value = nothing(tag);
    tarn::storeLittleEndian(value.payload.plain, bytes, 8);
    return value;
}

struct StoredFiles : testing::Test {
    TemporaryFolder folder;
    std::string name = folder.file("a");

    void expectSameAs(const std::string& kept) { EXPECT_EQ(contentOf(name), contentOf(stored(kept))); }
};

TEST_F(StoredFiles, RecordsHoldWhatWasWritten) {
    tarnEngineData indexed, lines;
    indexed.loadData(stored("record.dat").c_str(), loadReplace);
    EXPECT_EQ(recordOf({{17, number(tagDouble, 12.5)}, {15, text("GE")}, {336, longs(1, 2, -2)}}),
              *indexed.root);
    indexed.saveData(name.c_str());
    expectSameAs("record.dat");
    lines.loadData(stored("record.txt").c_str(), loadReplace);
    const Keyed fields = {{1, number(tagShort, -7)},   {2, number(tagLong, 100'000)},
                          {3, number(tagFloat, 0.75)}, {4, number(tagDouble, 12.5)},
                          {5, number(tagChar, 'P')},   {6, text("A|B")},
                          {7, number(tagNumber, -9)},  {8, Owned()},
                          {336, longs(1, 1, -2)},      {337, columnOf({{0, text("up")}, {1, text("down")}})}};
    EXPECT_EQ(recordOf(fields), *lines.root);
}

TEST_F(StoredFiles, ValuesOfEveryTagHoldWhatWasWritten) {
    const Owned expected[] = {Owned(),
                              number(tagByte, 200),
                              number(tagShort, -300),
                              number(tagLong, 100'000),
                              number(tagFloat, 0.75),
                              number(tagDouble, -0.1),
                              number(tagChar, -2),
                              number(tagUShort, 15230),
                              number(tagWord, 70'000),
                              eightBytes(9, 0x0807060504030201),
                              text("12 1/2"),
                              wideText(u"\u00E9\u20AC"),
                              eightBytes(12, 0x100F0E0D0C0B0A09),
                              number(tagNumber, -7),
                              blob("\0\xFF\x40"s),
                              text("\xE9t\xE9", tagString),
                              eightBytes(18, 0x8080808080808080),
                              eightBytes(19, 0x3837363534333231),
                              vectorOf({number(tagLong, 1), text("two")})};
    tarnIndexDataFile file;
    file.readIndexDataFile(stored("values.dat").c_str());
    for (std::int32_t i = 0; i < 19; ++i) {
        MOLTVARIANT* value = nullptr;
        file.getDataRecord(7, i < 18 ? 0 : 2, i % 18, &value);
        EXPECT_EQ(readable(value), readable(&expected[i]));
    }
    file.writeIndexDataFile(name.c_str());
    expectSameAs("values.dat");
}

TEST_F(StoredFiles, MenusAndScrambledFilesHoldWhatWasWritten) {
    for (const bool scrambled : {false, true}) {
        tarnMenuParser parser;
        const std::string file = stored(scrambled ? "menu.mnu" : "menu.txt");
        const tarnMenuDef& menu = *parser.getMenuDef(file.c_str(), scrambled ? 1 : 0);
        const tarnMenuDef& item = *menu.getChild(0);
        EXPECT_STREQ(menu.label, "File");
        EXPECT_EQ(menu.number, 7);
        EXPECT_STREQ(item.label, "Open");
        EXPECT_STREQ(item.extra, "Open a file");
        EXPECT_EQ(item.number, 2);
        EXPECT_EQ(item.id, 100);
        EXPECT_EQ(menu.getChild(1)->kind, 3);
    }
    translateFile(0, stored("menu.txt").c_str(), name.c_str());
    expectSameAs("menu.mnu");
    translateFile(1, stored("scrambled.dat").c_str(), name.c_str());
    EXPECT_EQ(contentOf(name), "Plain text of 27 characters     ");
}

TEST_F(StoredFiles, IniFilesHoldWhatWasWritten) {
    std::int32_t width = 0;
    char title[16] = {}, place[4] = {};
    tarnIniFile ini("client");
    ini.setIniFileDirectory(TARN_STORED_FILES);
    ini.readIniInt("window", "width", 0, width);
    ini.readIniString("window", "title", "", title, sizeof title);
    ini.readIniStruct("window", "place", nullptr, place, sizeof place);
    EXPECT_EQ(width, 640);
    EXPECT_STREQ(title, "Orders");
    EXPECT_EQ(std::string(place, 4), "\x12\x34\xAB\xFF");
    ini.setIniFileDirectory(folder.path().string().c_str());
    ini.writeIniInt("window", "width", width);
    ini.writeIniString("window", "title", title);
    ini.writeIniStruct("window", "place", place, sizeof place);
    name = folder.file("client.ini");
    expectSameAs("client.ini");
}

TEST_F(StoredFiles, Base64HoldsWhatWasWritten) {
    unsigned char bytes[9] = {};
    char encoded[13] = {};
    const std::string kept = contentOf(stored("base64.txt"));
    ASSERT_EQ(UUdecode(kept.c_str(), bytes, 0, 1), 7);
    EXPECT_EQ(std::string(bytes, bytes + 7), "\xFB\xEF\xBE\xFF\0\x10\x83"s);
    UUencode(bytes, 7, encoded, '=', 1);
    EXPECT_EQ(encoded, kept);
}

#if !defined(_WIN32)

TEST_F(StoredFiles, RegistryFoldersHoldWhatWasWritten) {
    namespace fs = std::filesystem;
    const fs::path registry = folder.path() / "tarnutil/registry",
                   client = "HKEY_CURRENT_USER/k-client%20one";
    fs::create_directory(folder.path() / "tarnutil");
    fs::copy(stored("registry"), registry, fs::copy_options::recursive);
    setEnvironment("XDG_DATA_HOME", folder.path().string().c_str());
    std::uint32_t width = 0;
    char title[7] = {}, raw[3] = {};
    tarnRegistry key(HKEY_CURRENT_USER);
    key.openKey("client one", 0);
    key.get("WIDTH", width);
    key.get("title", title, 7);
    key.getBinary("Raw", raw, 3);
    EXPECT_EQ(width, 640U);
    EXPECT_STREQ(title, "Orders");
    EXPECT_EQ(std::string(raw, 3), "\x80\0\xFF"s);
    key.closeKey();
    fs::remove_all(registry);
    key.openKey("Client One", 1);
    key.set("Width", width);
    key.set("Title", title, 0);
    key.setBinary("Raw", raw, 3);
    for (const char* file : {"key", "v-width", "v-title", "v-raw"}) {
        name = (registry / client / file).string();
        expectSameAs((fs::path("registry") / client / file).string());
    }
    setEnvironment("XDG_DATA_HOME", nullptr);
}

TEST_F(StoredFiles, BitmapsHoldWhatWasWritten) {
    const std::string packed = contentOf(stored("picture.dib"));
    const auto module = reinterpret_cast<HINSTANCE>(ULONG_PTR{0x6000});
    tarn::addResource(module, 2, 7, packed.data(), static_cast<std::uint32_t>(packed.size()));
    const HDC context = CreateCompatibleDC(nullptr);
    const tarnBitmap bitmap(module, 7, 1);
    SelectObject(context, bitmap.bitmap);
    const COLORREF entries[] = {15, 14, 4, 1, 2, 3};  // of the colour table, the upper row first
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(GetPixel(context, i % 3, i / 3), RGB(entries[i] * 16, 255 - entries[i], entries[i])) << i;
    DeleteDC(context);
    tarn::removeResources(module);
}

#endif

}  // namespace
