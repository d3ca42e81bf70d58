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
#include "tests/support.h"
#include "tests/values.h"

namespace {

using namespace tarntest;

std::string stored(const std::string& name) {
    return TARN_STORED_FILES "/" + name;
}

TEST(StoredFiles, RecordsHoldWhatWasWritten) {
    const TemporaryFolder folder;
    tarnEngineData indexed, lines;
    indexed.loadData(stored("record.dat").c_str(), loadReplace);
    EXPECT_EQ(describe(indexed.root), "22:[17=5:12.5,15=10:GE,336=21:[0=3:1,2=3:-2]]");
    indexed.saveData(folder.file("a").c_str());
    EXPECT_EQ(contentOf(folder.file("a")), contentOf(stored("record.dat")));
    lines.loadData(stored("record.txt").c_str(), loadReplace);
    EXPECT_EQ(describe(lines.root),
              "22:[1=2:-7,2=3:100000,3=4:0.75,4=5:12.5,5=6:80,6=10:A|B,7=14:-9,8=0:0,"
              "336=21:[0=3:1,1=3:-2],337=21:[0=10:up,1=10:down]]");
}

TEST(StoredFiles, ValuesOfEveryTagHoldWhatWasWritten) {
    const std::string expected =
        "0:0;1:200;2:-300;3:100000;4:0.75;5:-0.1;6:-2;7:15230;8:70000;9:578437695752307201;10:12 1/2;"
        "11:<233><8364>;12:1157159078456920585;14:-7;15:" +
        std::string("\0\xFF\x40", 3) +
        ";17:\xE9t\xE9;18:-9187201950435737472;19:4050765991979987505;13:[3:1,10:two];";
    std::string found;
    const TemporaryFolder folder;
    tarnIndexDataFile file;
    file.readIndexDataFile(stored("values.dat").c_str());
    for (std::int32_t i = 0; i < 19; ++i) {
        MOLTVARIANT* value = nullptr;
        file.getDataRecord(7, i < 18 ? 0 : 2, i % 18, &value);
        found += describe(value) + ";";
    }
    EXPECT_EQ(found, expected);
    file.writeIndexDataFile(folder.file("a").c_str());
    EXPECT_EQ(contentOf(folder.file("a")), contentOf(stored("values.dat")));
}

TEST(StoredFiles, MenusAndScrambledFilesHoldWhatWasWritten) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a");
    for (const char* kind : {"menu.txt", "menu.mnu"}) {
        tarnMenuParser parser;
        const tarnMenuDef& menu = *parser.getMenuDef(stored(kind).c_str(), kind[5] == 'm' ? 1 : 0);
        const tarnMenuDef& item = *menu.getChild(0);
        EXPECT_EQ(menu.label + std::string(item.label) + item.extra, "FileOpenOpen a file");
        EXPECT_EQ(((menu.number * 10 + item.number) * 1000 + item.id) * 10 + menu.getChild(1)->kind, 721003);
    }
    translateFile(0, stored("menu.txt").c_str(), name.c_str());
    EXPECT_EQ(contentOf(name), contentOf(stored("menu.mnu")));
    translateFile(1, stored("scrambled.dat").c_str(), name.c_str());
    EXPECT_EQ(contentOf(name), "Plain text of 27 characters     ");
}

TEST(StoredFiles, IniFilesAndBase64HoldWhatWasWritten) {
    const TemporaryFolder folder;
    tarnIniFile ini("client");
    ini.setIniFileDirectory(TARN_STORED_FILES);
    std::int32_t width = 0;
    char title[16], place[4], encoded[13];
    unsigned char bytes[9];
    ini.readIniInt("window", "width", 0, width);
    ini.readIniString("window", "title", "", title, sizeof title);
    ini.readIniStruct("window", "place", nullptr, place, sizeof place);
    EXPECT_EQ(title + std::to_string(width) + std::string(place, 4), "Orders640\x12\x34\xAB\xFF");
    ini.setIniFileDirectory(folder.path().string().c_str());
    ini.writeIniInt("window", "width", width);
    ini.writeIniString("window", "title", title);
    ini.writeIniStruct("window", "place", place, sizeof place);
    EXPECT_EQ(contentOf(folder.file("client.ini")), contentOf(stored("client.ini")));

    const int length = UUdecode(contentOf(stored("base64.txt")).c_str(), bytes, 0, 1);
    EXPECT_EQ(std::string(bytes, bytes + length), std::string("\xFB\xEF\xBE\xFF\0\x10\x83", 7));
    UUencode(bytes, 7, encoded, '=', 1);
    EXPECT_EQ(encoded, contentOf(stored("base64.txt")));
}

#if !defined(_WIN32)

TEST(StoredFiles, RegistryFoldersHoldWhatWasWritten) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    const fs::path registry = folder.path() / "tarnutil/registry",
                   client = "HKEY_CURRENT_USER/k-client%20one";
    fs::create_directory(folder.path() / "tarnutil");
    fs::copy(stored("registry"), registry, fs::copy_options::recursive);
    setEnvironment("XDG_DATA_HOME", folder.path().string().c_str());
    std::uint32_t width = 0;
    char title[7], raw[3];
    tarnRegistry key(HKEY_CURRENT_USER);
    key.openKey("client one", 0);
    EXPECT_EQ(key.get("WIDTH", width) + key.get("title", title, 7) + key.getBinary("Raw", raw, 3), 3);
    EXPECT_EQ(title + std::to_string(width) + std::string(raw, 3), std::string("Orders640\x80\0\xFF", 12));
    key.closeKey();
    fs::remove_all(registry);
    key.openKey("Client One", 1);
    key.set("Width", width), key.set("Title", title, 0), key.setBinary("Raw", raw, 3);
    for (const char* name : {"key", "v-width", "v-title", "v-raw"})
        EXPECT_EQ(contentOf((registry / client / name).string()),
                  contentOf((stored("registry") / client / name).string()));
    setEnvironment("XDG_DATA_HOME", nullptr);
}

TEST(StoredFiles, BitmapsHoldWhatWasWritten) {
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
