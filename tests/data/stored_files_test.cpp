// Reads the files beside this one, which no test and no tool rewrites, and has the library write them again:
// store/, engine/text_file.cpp, engine/indexed_file.cpp, present/menu_parser.cpp,
// platform/registry/record.cpp, platform/drawing/dib.cpp.

#include "engine/engine_data.h"
#include "present/screen.h"
#include "store/file_tools.h"
#include "store/index_data_file.h"
#include "store/settings.h"
#include "store/uu_codec.h"
#include "tests/plain/menu_text.h"
#include "tests/values.h"

namespace {

using namespace tarntest;
using namespace std::string_literals;

std::string stored(const std::string& name) {
    return TARN_STORED_FILES "/" + name;
}

struct StoredFiles : testing::Test {
    TemporaryFolder folder;
    std::string name = folder.file("a");

    void expectSameAs(const std::string& kept) { EXPECT_EQ(contentOf(name), contentOf(stored(kept))); }
};

TEST_F(StoredFiles, RecordsHoldWhatWasWritten) {
    tarnEngineData indexed;
    indexed.loadData(stored("record.dat").c_str(), loadReplace);
    EXPECT_EQ(readable(indexed.root),
              R"(record [17: double 12.5, 15: text "GE", 336: column [0: long 1, 2: long -2]])");
    indexed.saveData(name.c_str());
    expectSameAs("record.dat");
    tarnEngineData lines;
    lines.loadData(stored("record.txt").c_str(), loadReplace);
    EXPECT_EQ(readable(lines.root),
              "record [1: short -7, 2: long 100000, 3: float 0.75, 4: double 12.5, 5: character 80, "
              "6: text \"A|B\", 7: number -9, 8: empty, 336: column [0: long 1, 1: long -2], "
              "337: column [0: text \"up\", 1: text \"down\"]]");
}

TEST_F(StoredFiles, ValuesOfEveryTagHoldWhatWasWritten) {
    const char* const expected[] = {
        "empty",
        "byte 200",
        "short -300",
        "long 100000",
        "float 0.75",
        "double -0.1",
        "character -2",
        "unsigned short 15230",
        "word 70000",
        R"(tag 9 "\1;\2;\3;\4;\5;\6;\7;\8;")",
        R"(text "12 1/2")",
        R"(wide text "<233><8364>")",
        R"(tag 12 "\9;\10;\11;\12;\13;\14;\15;\16;")",
        "number -7",
        R"(blob "\0;\255;@")",
        R"(string "\233;t\233;")",
        R"(tag 18 "\128;\128;\128;\128;\128;\128;\128;\128;")",
        R"(tag 19 "12345678")",
        R"(vector [long 1, text "two"])",
    };
    tarnIndexDataFile file;
    file.readIndexDataFile(stored("values.dat").c_str());
    for (std::int32_t i = 0; i < 19; ++i) {
        MOLTVARIANT* value = nullptr;
        file.getDataRecord(7, i < 18 ? 0 : 2, i % 18, &value);
        EXPECT_EQ(readable(value), expected[i]);
    }
    file.writeIndexDataFile(name.c_str());
    expectSameAs("values.dat");
}

TEST_F(StoredFiles, MenusAndScrambledFilesHoldWhatWasWritten) {
    const std::string tree = "POPUP,File,7,MENUITEM,Open,2,100,Open a file,MENUITEM,SEPARATOR,END";
    tarnMenuParser parser;
    EXPECT_EQ(tarnplain::menuTextOf(*parser.getMenuDef(stored("menu.txt").c_str(), 0)), tree);
    EXPECT_EQ(tarnplain::menuTextOf(*parser.getMenuDef(stored("menu.mnu").c_str(), 1)), tree);
    translateFile(0, stored("menu.txt").c_str(), name.c_str());
    expectSameAs("menu.mnu");
    translateFile(1, stored("scrambled.dat").c_str(), name.c_str());
    EXPECT_EQ(contentOf(name), "Plain text of 27 characters     ");
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
