#pragma once

// A piece of work for each family of the library, all with objects of its own, and what came of it as a text:
// the same at each call with the same number.  The tests let it run without memory, with system calls that
// fail, and on several threads at once.

#include <atomic>

#include "tarn.h"
#include "tarnutil.h"
#include "tests/plain/packed_bitmap.h"
#include "tests/support.h"
#include "tests/values.h"

namespace tarntest {

using Text = std::unique_ptr<char[]>;

// What a piece of work answers where an operation reported a failure.
constexpr const char* reported = "a failure was reported";
constexpr const char* longText = "a text that is longer than the room of any short text";

inline const TemporaryFolder* familyFolder = nullptr;
inline const MOLTVARIANT* familyTree = nullptr;

inline std::string familyFile(const char* name, int n) {
    return familyFolder->file(name + std::to_string(n));
}

template <class... Numbers>
std::string allShown(Numbers... numbers) {
    return ((shown(static_cast<double>(numbers)) + ' ') + ...);
}

inline std::string containers(int n) {
    tarnTArray<std::int32_t> array(2);
    array.setAt(40, n);
    array.insertAt(6, 90);
    nodeList list;
    const std::unique_ptr<nodeList, decltype([](nodeList* used) { used->release(); })> owner(&list);
    for (std::int32_t i = 0; i < 40; ++i) list.add(nullptr, i * 7 % 40);
    tarnBuffer buffer(longText, 30);
    for (int i = 0; i < 9; ++i) buffer.append(buffer);
    return allShown(array.capacity, list.find(21) - list.cells, buffer.length, buffer.capacity);
}

inline std::string values(int n) {
    const Owned copy(familyTree);
    const Owned price = number(tagDouble, 2.5 * n);
    Owned converted = text("2.5");
    convertFromString(&converted, tagDouble);
    const Text formed(convertToString(&price, "%50.3f"));
    tarnString string(longText);
    string.append(&price);
    const tarnException failure(1, string);
    const tarnException caught(failure);
    return readable(&copy) + readable(&converted) + formed.get() + caught.message.text;
}

inline std::string owners(int n) {
    const tarn::Value value{tarn::ValueView(*familyTree)};
    tarn::MenuTree menu;
    const tarn::LoadReport loaded = menu.load(familyFile("menu", n));
    tarn::Ini ini = tarn::Ini::at(familyFile("owners", n) + ".ini");
    tarn::RegistryKey key = tarn::RegistryKey::create(HKEY_CURRENT_USER, familyFile("key", n).substr(1));
    const bool isSet = ini.set("section", "key", longText) && key.set("value", longText);
    const auto setting = ini.text("section", "key");
    const auto stored = key.value("value").text();
    tarn::KeyedFile keyed;
    tarn::KeyedFile again;
    keyed.set({7, 0}, 1, value);
    const std::string file = familyFile("keyed", n);
    const bool isSaved = keyed.save(file) && again.load(file);
    if (!loaded || !isSet || !setting || !stored || !isSaved) return reported;
    EXPECT_EQ(again.size({7, 0}), 2);
    return readable(value.clone().raw()) + loaded.message(longText) + setting.value + *stored;
}

inline std::string record(int n) {
    tarnEngineData record;
    const Owned content = text(longText);
    const Owned value = number(tagDouble, n);
    for (std::int32_t id = 0; id < 33; ++id) record.storeData(id, &content);
    for (std::int32_t row = 0; row < 40; ++row) record.storeMultiData(336 + row % 2, row * 7 % 40, &value, 0);
    record.insertMultiData(336, 3, &content);
    record.appendMultiData(&record);
    tarnEngineData clone(&record);
    tarnEngineData loaded;
    tarnEngineData rows;
    const std::string file = familyFile("record", n);
    if (clone.saveData(file.c_str()) != 1 || loaded.loadData(file.c_str(), loadReplace) != 1 ||
        rows.loadData(familyFile("rows", n).c_str(), loadInsert) != 1 ||
        rows.loadData(file.c_str(), loadInsert) != 1 ||
        readable(loaded.root) != readable(clone.root))  // a read that fails gives an empty record
        return reported;
    rows.setRootData(Owned(loaded.root).release());
    return readable(rows.root) + allShown(rows.numMulti);
}

inline std::string files(int n) {
    const std::string file = familyFile("set", n);
    const std::string scrambled = familyFile("scrambled", n);
    tarnIndexDataFile set;
    set.addIndexRecord(7, n, 1);
    set.addDataRecord(7, n, 8, longText);
    if (set.writeIndexDataFile(file.c_str()) != 1 || set.readIndexDataFile(file.c_str()) != 1)
        return reported;
    char* content = nullptr;
    set.getDataRecord(7, n, 8, &content);
    const Text owner(content);
    if (content == nullptr || writeFile(file.c_str(), longText, 48) != 1) return reported;
    translateFile(0, file.c_str(), scrambled.c_str());
    translateFile(1, scrambled.c_str(), scrambled.c_str());
    std::int32_t size = 0;
    const Text back(readFile(scrambled.c_str(), size));
    // translateFile answers nothing, so its failure shows in the file alone.
    if (back == nullptr || std::string(longText, 48) != back.get()) return reported;
    return std::string(content) + back.get();
}

// All threads write to one ini file and below one key of the registry, each under names of its own.
inline std::string settings(int n) {
    static std::atomic<std::uint32_t> last{0};
    const std::uint32_t value = ++last;
    const std::string name = "a name of some length " + std::to_string(n);
    const std::string key = "Software\\" + name;
    tarnRegistry parent(HKEY_CURRENT_USER);
    tarnRegistry registry(HKEY_CURRENT_USER);
    std::uint32_t fromRegistry = 0;
    if (registry.openKey(key.c_str(), 1) != 1 || registry.set(name.c_str(), value) != 1 ||
        registry.get(name.c_str(), fromRegistry) != 1 || registry.flushKey() != 1 ||
        registry.deleteSubKeyTree(key.c_str()) != 1 || parent.openKey("Software", 0) != 1 ||
        parent.deleteSubKey(name.c_str()) != 1)
        return reported;
    tarnIniFile ini(longText);
    ini.setIniFileDirectory(familyFolder->path().string().c_str());
    std::int32_t fromIni = 0;
    char block[6] = "block";
    if (ini.writeIniInt("s", name.c_str(), static_cast<int>(value)) != 1 ||
        ini.writeIniStruct(name.c_str(), "block", block, 6) != 1 ||
        ini.readIniStruct(name.c_str(), "block", nullptr, block, 6) != 1 ||
        ini.readIniInt("s", name.c_str(), 0, fromIni) != 1)
        return reported;
    return fromRegistry == value && static_cast<std::uint32_t>(fromIni) == value ? "kept" : "lost";
}

inline std::string texts(int n) {
    const std::string day = "11/" + std::to_string(10 + n) + "/1999";
    const Text settled(getSettlementDate(day.c_str(), n, 1));
    tarnOptionSymbol symbol(longText);
    symbol.setOptionSymbol(("XYZ JAN 1000000000" + std::to_string(n) + " 1000000/2 PUT").c_str());
    tarnString money(longText);
    formatToMoneyFormat("123456789012345678901234567890", money, 1);
    const Text joined(concatstr(symbol.strikeText, longText));
    const Text converted(convertNewline("a  b\nc"));
    char digits[] = "-12345.6";
    char patterned[100] = "";
    formatStringWithPattern(digits, "$*,###*.##", patterned, eNegParens);
    return std::string(settled.get()) + money.text + joined.get() + converted.get() + patterned;
}

inline std::string presentation(int n) {
    tarnMenuParser menu;
    menu.getMenuDef(familyFile("menu", n).c_str(), 0)->createMenu();
    menu.root->createMenu();
    if (menu.root->find(4) == nullptr || menu.root->menu == nullptr) return reported;
    const Owned container = number(tagPlain9, 0);
    const Owned content = text(longText);
    tarnPrintData print;
    for (std::int32_t id = 0; id < 33; ++id) print.storeData(id, &container, tarn::printMultiData, 0);
    _MultiPrintStruct row;
    row.id = n;
    print.storeMultiData(&row, &content);
    print.storeDateTime(0);
    return allShown(GetMenuItemCount(menu.root->menu), print.getNumMultiData(n), tarnMetrics().cxScreen,
                    *getGlobalPointer() == nullptr) +
           print.getPrintData(33)->value.payload.text;
}

struct Painter : ItarnResourceMgr {
    HBRUSH brush = nullptr;
    HDC context = CreateCompatibleDC(nullptr);

    ~Painter() override {
        DeleteObject(brush);
        DeleteDC(context);
    }
    HBRUSH getBrush(COLORREF color) override {
        DeleteObject(brush);
        return brush = CreateSolidBrush(color);
    }
    HDC getMemoryDC() override { return context; }
};

inline std::string pictures(int n) {
    Painter painter;
    const auto id = static_cast<std::uint16_t>(1 + n);  // put there by the test
    const tarnBitmap plain(nullptr, id, 0);
    const tarnBitmap coloured(nullptr, id, 1);
    tarnBitmap gradient(painter.context, 3, 4, 0);
    gradient.bitmapMOLT(0, 3, 5, 0, painter.context, &painter);
    const bool whole = plain.bitmap != nullptr && coloured.bitmap != nullptr && coloured.palette != nullptr &&
                       gradient.bitmap != nullptr && painter.context != nullptr;
    return whole ? allShown(coloured.width, GetPaletteEntries(coloured.palette, 0, 0, nullptr)) : reported;
}

// Scrambling runs below files; Base64 and option values take no memory and make no system call.
constexpr struct {
    const char* name;
    std::string (*answer)(int);
} families[] = {{"containers", containers}, {"values", values},
                {"record", record},         {"owners", owners},
                {"files", files},           {"ini file and registry", settings},
                {"texts", texts},           {"presentation", presentation},
                {"pictures", pictures}};

// What all of them need: their files, a value of many tags, a clock that stands still, and the pictures'
// resources.
struct Families : testing::Test {
    TemporaryFolder folder{inMemory};
    HeldClock clock{2020, 4, 17, 16};
    const Owned tree = vectorOf({text("in a vector"), blob("blob"), wideText(u"wide"),
                                 text("object", tagString), listOf({number(tagDouble, 2.5)})});

    Families() {
        familyFolder = &folder;
        familyTree = &tree;
        setEnvironment("XDG_DATA_HOME", folder.path().string().c_str());
        const PackedBitmap packed(8, 3, 2);
        for (int n = 0; n < 4; ++n) {
            fill(familyFile("rows", n), "#1^7|15|seven^#0|2^336|15|a^737|5|1^336|15|b^737|5|2^");
            fill(familyFile("menu", n), "POPUP,a,1,POPUP,b,2,MENUITEM,c,3,4,d,END,MENUITEM,SEPARATOR,END");
            tarn::addResource(nullptr, 2, static_cast<std::uint16_t>(1 + n), packed.bytes.data(),
                              static_cast<std::uint32_t>(packed.bytes.size()));
        }
    }
    ~Families() override {
        tarn::removeResources(nullptr);
        setEnvironment("XDG_DATA_HOME", nullptr);
    }
};

}  // namespace tarntest
