// The end of memory at every allocation of every family.  An operation runs again and again: each time its
// next allocation fails, alone or with all that follow, until it passes without one that failed.  Then
// nothing may have leaked, the answer was a told one, and the same operation on the same objects comes out
// right.

#include <dirent.h>
#include <dlfcn.h>
#include <unistd.h>

#include <new>

#include "tarnutil.h"
#include "tests/present/packed_bitmap.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

struct Memory {
    long live = 0;       // blocks, and modules that are loaded
    long countdown = 0;  // the allocation that fails, from 1; 0 lets all pass
    bool forever = false;
    long failed = 0;
    bool elsewhere = false;  // another thread's call succeeds whenever a block is released

    bool mayAllocate() {
        if (countdown == 0 || --countdown > 0) return true;
        countdown = forever ? 1 : 0;
        ++failed;
        return false;
    }
} memory;

void* allocate(std::size_t bytes) {
    void* const block = memory.mayAllocate() ? std::malloc(bytes) : nullptr;
    memory.live += block == nullptr ? 0 : 1;
    return block;
}

void* allocateOrThrow(std::size_t bytes) {
    void* const block = allocate(bytes);
    return block == nullptr ? throw std::bad_alloc() : block;
}

void release(void* block) {
    memory.live -= block == nullptr ? 0 : 1;
    std::free(block);
    if (memory.elsewhere) SetLastError(ERROR_SUCCESS);
}

}  // namespace

void* operator new(std::size_t bytes) {
    return allocateOrThrow(bytes);
}
void* operator new[](std::size_t bytes) {
    return allocateOrThrow(bytes);
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return allocate(bytes);
}
void operator delete(void* block) noexcept {
    release(block);
}
void operator delete[](void* block) noexcept {
    release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    release(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    release(block);
}

// What the library allocates inside the C library; the linker puts these in the place of its calls.
extern "C" {
DIR* __real_fdopendir(int descriptor);
DIR* __wrap_fdopendir(int descriptor) {
    errno = ENOMEM;
    return memory.mayAllocate() ? __real_fdopendir(descriptor) : nullptr;
}
void* __real_dlopen(const char* file, int flags);
void* __wrap_dlopen(const char* file, int flags) {
    void* const module = memory.mayAllocate() ? __real_dlopen(file, flags) : nullptr;
    memory.live += module == nullptr ? 0 : 1;
    return module;
}
int __real_dlclose(void* module);
int __wrap_dlclose(void* module) {
    --memory.live;
    return __real_dlclose(module);
}
}

namespace {

enum class Way { whole, once, fromThereOn, toTheEnd };  // of failing; the last one also while objects go

struct Trial {
    Way way = Way::whole;
    long nth = 0;
    std::string expected = {};  // by the run without a failure

    // Does the operation's work, which answers 0 where it tells a failure, and shows what came of it.
    //   keeps  a failure leaves what `look` shows as it was
    template <class Act, class Look>
    void operator()(Act act, Look look, bool keeps = false) {
        const std::string before = keeps ? look() : "";
        const long failedBefore = memory.failed;
        int answer = 0;
        bool thrown = false;
        memory.forever = way != Way::once;
        memory.countdown = nth;
        try {
            answer = act();
        } catch (const std::bad_alloc&) {
            thrown = true;
        }
        if (way == Way::toTheEnd) return;
        memory.countdown = 0;
        if (way == Way::whole) expected = look();
        EXPECT_TRUE(thrown || answer == 1 || memory.failed != failedBefore)
            << "fails with all the memory it wants";
        if (thrown || answer == 0) {
            EXPECT_TRUE(!keeps || look() == before);
            answer = act();
        }
        EXPECT_EQ(answer, 1);
        EXPECT_EQ(look(), expected) << (thrown ? "after bad_alloc" : "after a told answer");
    }
};

// Files of all operations, and a record to copy and to save.
struct World {
    tarntest::TemporaryFolder folder{tarntest::inMemory};
    std::string first = folder.file("first"), second = folder.file("second");
    tarnEngineData record;

    World() {
        const auto tree = tarntest::vectorOf(tarntest::text("in a vector"), tarntest::blob("a\0b"),
                                             tarntest::wideText(u"wide"), tarntest::text("object", tagString),
                                             tarntest::listOf(tarntest::number(tagDouble, 2.5)));
        record.storeData(1, &tree);
        for (std::int32_t row = 0; row < 5; ++row) {
            const auto price = tarntest::text(("2" + std::to_string(row)).c_str());
            for (const std::int32_t id : {336, 737, 20 + row}) record.storeMultiData(id, row, &price, 0);
        }
        const auto date = tarntest::text("01/02/118");
        record.storeMultiData(737, 0, &date, 0);
        for (const char* name : {"old", "new"}) {
            std::filesystem::create_directory(folder.file(name));
            tarntest::fill(folder.file(name) + "/place.ini", "[s]\nplace=" + std::string(name));
        }
        tarntest::fill(folder.file("rows"), "#2^7|15|seven^8|5|2.5^#0|2^336|15|a^737|5|1^336|15|b^737|5|2^");
        tarntest::fill(folder.file("menu"),
                       "POPUP,a,1,POPUP,b,2,MENUITEM,c,3,4,d,END,MENUITEM,SEPARATOR,END");
    }
};
World* world = nullptr;

std::string file(const char* name) {
    return world->folder.file(name);
}
std::string shown(const tarnEngineData& record) {
    return tarntest::describe(record.root) + std::to_string(record.numMulti);
}

constexpr const char* longText = "a text that is longer than the room of any short text";
std::string boxed;

struct Host : tarnGlobalInterfaces, tarnFieldDictionary, ItarnResourceMgr {
    HDC context = CreateCompatibleDC(nullptr);
    std::vector<HBRUSH> brushes;
    ~Host() override {
        for (const HBRUSH brush : brushes) DeleteObject(brush);
        DeleteDC(context);
    }
    tarnUserDialog* userDialog() override { return nullptr; }
    tarnFieldDictionary* fieldDictionary() override { return this; }
    std::int32_t getFieldType(std::int32_t) override { return 7; }
    HBRUSH getBrush(COLORREF color) override {
        brushes.reserve(brushes.size() + 1);
        return brushes.emplace_back(CreateSolidBrush(color));
    }
    HDC getMemoryDC() override { return context; }
};

using Text = std::unique_ptr<char[]>;

// One for each family and more for the families that change what they hold: where an act is a single call, a
// failure has to leave the object as it was, or the second call wouldn't come out right.
const struct {
    const char* name;
    void (*run)(Trial&);
} operations[] = {
    {"array",
     [](Trial& trial) {
         tarnTArray<std::int32_t> array(2);
         array.setAt(1, 5);
         trial([&] { return array.insertAt(6, 1), 1; },
               [&] { return std::to_string(array.capacity * 100 + array.getAt(2)); }, true);
     }},
    {"array grow",
     [](Trial& trial) {
         tarnTArray<std::int32_t> array(2);
         trial([&] { return array.grow(9), array.capacity == 2 ? 0 : 1; },
               [&] { return std::to_string(array.capacity); }, true);
     }},
    {"field list",
     [](Trial& trial) {
         tarntest::Owned owner;
         owner.payload.record = new tarnFieldList, owner.tag = tagRecord;
         for (std::int32_t i = 0; i < 32; ++i) owner.payload.record->add(i, new MOLTVARIANT);
         auto* const value = new MOLTVARIANT;
         bool added = false;
         trial([&] { return owner.payload.record->add(99, value), added = true, 1; },
               [&] { return tarntest::describe(&owner); }, true);
         if (!added) delete value;
     }},
    {"keyed list",
     [](Trial& trial) {
         nodeList list;
         trial(
             [&] {
                 list.release();
                 for (std::int32_t i = 0; i < 40; ++i) list.add(nullptr, i * 7 % 40);
                 return list.find(21) == list.cells + 21 ? 1 : -1;
             },
             [&] { return std::to_string(list.count); });
         list.release();
     }},
    {"string",
     [](Trial& trial) {
         tarnString string(longText);
         trial([&] { return string.append(longText), 1; }, [&] { return std::string(string.text); }, true);
     }},
    {"string assign, exception",
     [](Trial& trial) {
         const tarnException failure(1, tarnString(longText));
         tarnException copy(2, tarnString("short"));
         trial([&] { return (copy = tarnException(failure)).message.trim('t'), 1; },
               [&] { return std::string(copy.message.text); });
     }},
    {"buffer",
     [](Trial& trial) {
         tarnBuffer buffer(longText, 30);
         const tarnBuffer large(9000);
         trial(
             [&] {
                 buffer.assign(longText, 30), buffer.append(world->record.root, 8), buffer.prepend(large);
                 for (int i = 0; i < 4; ++i) buffer.append(buffer);
                 return 1;
             },
             [&] { return std::to_string(buffer.length) + std::to_string(buffer.capacity); });
     }},
    {"value copy",
     [](Trial& trial) {
         tarntest::Owned copy;
         trial([&] { return copy.destroyContent(), copy.copyContent(world->record.root), 1; },
               [&] { return tarntest::describe(&copy); });
     }},
    {"value as text, and back",
     [](Trial& trial) {
         tarntest::Owned price = tarntest::number(tagDouble, 2.5), text = tarntest::text("2.5");
         trial(
             [&] {
                 const Text plain(convertToString(&price)), formed(convertToString(&price, "%50.3f"));
                 tarntest::Owned number(&text);
                 convertFromString(&number, tagDouble);
                 return varcmp(text, price) == 0 && varcmp(price, number) == 0 ? 1 : -1;
             },
             [&] { return tarntest::describe(&price); });
     }},
    {"record store",
     [](Trial& trial) {
         tarnEngineData record;
         const tarntest::Owned text = tarntest::text(longText);
         for (std::int32_t i = 0; i < 32; ++i) record.storeData(i, &text);
         trial([&] { return record.storeData(32, &text), 1; }, [&] { return shown(record); }, true);
     }},
    {"record rows",
     [](Trial& trial) {
         tarnEngineData record(&world->record);
         const tarntest::Owned text = tarntest::text(longText);
         trial([&] { return record.storeMultiData(999, 3, &text, 0), 1; }, [&] { return shown(record); });
     }},
    {"record insert",
     [](Trial& trial) {
         tarnEngineData record(&world->record);
         const tarntest::Owned text = tarntest::text(longText);
         trial([&] { return record.insertMultiData(336, 1, &text), 1; }, [&] { return shown(record); }, true);
     }},
    {"record move",
     [](Trial& trial) {
         tarnEngineData record(&world->record);
         trial([&] { return record.moveMultiData(4, 1), 1; }, [&] { return shown(record); }, true);
     }},
    {"record append, clone and hand over",
     [](Trial& trial) {
         tarnEngineData record;
         trial(
             [&] {
                 tarnEngineData clone(&world->record);
                 clone.appendMultiData(&world->record);
                 record.setRootData(tarntest::Owned(clone.root).release());
                 return 1;
             },
             [&] { return shown(record); });
     }},
    {"record conversion",
     [](Trial& trial) {
         Host host;
         tarnEngineData record;
         for (std::int32_t i = 0; i < 3; ++i) record.storeData(i, std::data({tarntest::text("2.5")}));
         trial([&] { return record.convertOperation(&host), 1; }, [&] { return shown(record); });
     }},
    {"record save and load",
     [](Trial& trial) {
         tarnEngineData record;
         trial(
             [&] {
                 return world->record.saveData(world->first.c_str()) == 1 &&
                                record.loadData(world->first.c_str(), loadReplace) == 1 &&
                                record.loadData(world->first.c_str(), loadInsert) == 1
                            ? 1
                            : -1;
             },
             [&] { return shown(record); });
     }},
    {"record load text",
     [](Trial& trial) {
         std::unique_ptr<tarnEngineData> record;
         trial(
             [&] {
                 record = std::make_unique<tarnEngineData>();
                 return record->loadData(file("rows").c_str(), loadInsert);
             },
             [&] { return shown(*record); });
     }},
    {"index data file",
     [](Trial& trial) {
         tarnIndexDataFile set;
         Text text;
         trial(
             [&] {
                 set.addIndexRecord(7, 0, 1), set.updateIndexRecord(7, 0, 9);
                 set.addDataRecord(7, 0, 8, longText), set.addDataRecord(7, 0, 1, world->record.root);
                 if (set.writeIndexDataFile(world->first.c_str()) != 1) return -1;
                 set.readIndexDataFile(world->first.c_str());
                 char* given = nullptr;
                 set.getDataRecord(7, 0, 8, &given);
                 text.reset(given);
                 return set.getNumberRepeats(7, 0) == 9 ? 1 : -1;
             },
             [&] { return std::string(text.get()); });
     }},
    {"whole and scrambled files",
     [](Trial& trial) {
         Text back;
         trial(
             [&] {
                 std::int32_t size = 0;
                 writeFile(world->first.c_str(), longText, 48);
                 translateFile(0, world->first.c_str(), world->second.c_str());
                 translateFile(1, world->second.c_str(), world->second.c_str());
                 back.reset(readFile(world->second.c_str(), size));
                 return size == 48 ? 1 : -1;
             },
             [&] { return std::string(back.get()); });
     }},
    {"Base64",
     [](Trial& trial) {
         char text[40];
         unsigned char back[30];
         trial(
             [&] {
                 UUencode(reinterpret_cast<const unsigned char*>(longText), 20, text, '=', 1);
                 return UUdecode(text, back, 0, 1) == 20 ? 1 : -1;
             },
             [&] { return std::string(text); });
     }},
    {"ini file",
     [](Trial& trial) {
         tarnIniFile ini(longText);
         char text[99] = "", block[6] = "block";
         trial(
             [&] {
                 std::int32_t number = 0;
                 ini.setIniFileDirectory(world->folder.path().c_str());
                 return std::min({ini.writeIniString("s", "text", longText), ini.writeIniInt("s", "n", 5),
                                  ini.writeIniStruct("s", "block", block, 6),
                                  ini.readIniString("s", "text", "", text, 99),
                                  ini.readIniInt("s", "n", 1, number),
                                  ini.readIniStruct("s", "block", nullptr, block, 6), number == 5 ? 1 : 0});
             },
             [&] { return text + tarntest::contentOf(file(longText) + ".ini"); });
     }},
    {"ini directory",
     [](Trial& trial) {
         tarnIniFile ini("place");
         ini.setIniFileDirectory(file("old").c_str());
         trial([&] { return ini.setIniFileDirectory(file("new").c_str()), 1; },
               [&] {
                   char place[9] = "";
                   return ini.readIniString("s", "place", "none", place, 9), std::string(place);
               },
               true);
     }},
    {"registry",
     [](Trial& trial) {
         tarnRegistry registry(HKEY_CURRENT_USER);
         char text[99] = "";
         trial(
             [&] {
                 registry.closeKey();
                 std::uint32_t number = 0;
                 int done = registry.openKey("Software\\A key of some length\\Below", 1);
                 done = std::min({done, registry.set("text", longText, 0),
                                  registry.set("a number of that key", 5), registry.get("text", text, 99),
                                  registry.get("a number of that key", number), registry.flushKey()});
                 return std::min(done, registry.deleteSubKeyTree("Software"));
             },
             [&] { return std::string(text); });
     }},
    {"options",
     [](Trial& trial) {
         tarnOptionSymbol symbol("XYZ JAN 25 1/2 PUT");
         double value = 0, implied = 0;
         trial(
             [&] {
                 symbol.setOptionSymbol("ABC FEB 1000000000 1000000000/3 CALL");
                 doCalculateBSValue(0, 100, 0.06, 0, 0.3, nullptr, nullptr, 0, 0, 0, 0, 0, 1, 10, 105, 120,
                                    nullptr, nullptr, nullptr, nullptr, &value, &implied);
                 return doCalculateHistoricalVolatility(&world->record) > 0 ? symbol.sideType - 1 : -1;
             },
             [&] { return symbol.strikeText + tarntest::shown(value) + tarntest::shown(implied); });
     }},
    {"calendar",
     [](Trial& trial) {
         Text date;
         trial([&] { return date.reset(getSettlementDate("11/24/99", 3, 1)), 1; },
               [&] { return std::string(date.get()); });
     }},
    {"financial text",
     [](Trial& trial) {
         tarnString money(longText);
         Text joined, lines, part, copy;
         trial(
             [&] {
                 formatToMoneyFormat("123456789012345678901234567890", money, 1);
                 joined.reset(concatstr(longText, longText)), lines.reset(convertNewline("a\nb"));
                 part.reset(newstr(longText, 3)), copy.reset(newstr(&money));
                 return 1;
             },
             [&] { return std::string(money.text) + joined.get() + lines.get() + part.get() + copy.get(); });
     }},
    {"print data",
     [](Trial& trial) {
         const tarntest::Owned container = tarntest::number(tagPlain9, 0), text = tarntest::text(longText);
         tarnPrintData data;
         for (std::int32_t i = 0; i < 31; ++i) data.storeData(0, &text, 0, 0);
         data.storeData(8, &container, tarn::printMultiData, 0);
         _MultiPrintStruct row;
         row.id = 8;
         trial(
             [&] {
                 data.storeMultiData(&row, &text);
                 tarnPrintData other;
                 other.storeDateTime(0), other.storeData(1, &text, tarn::printBullet, 0);
                 return data.storeData(9, &text, 0, 0), 1;
             },
             [&] { return std::string(data.getPrintData(32)->value.payload.text); });
     }},
    {"menu",
     [](Trial& trial) {
         tarnMenuParser parser;
         trial(
             [&] {
                 parser.getMenuDef(file("menu").c_str(), 0)->createMenu();
                 parser.root->createMenu();
                 return parser.root->find(4) != nullptr ? 1 : -1;
             },
             [&] { return std::to_string(GetMenuItemCount(parser.root->menu)); });
     }},
    {"bitmaps and resources",
     [](Trial& trial) {
         const Host host;
         std::unique_ptr<tarnBitmap> bitmap;
         trial(
             [&] {
                 const tarntest::PackedBitmap packed(8, 3, 2);
                 tarn::addResource(nullptr, 2, 5, packed.bytes.data(),
                                   static_cast<std::uint32_t>(packed.bytes.size()));
                 bitmap = std::make_unique<tarnBitmap>(nullptr, 5, 0);
                 int done = bitmap->bitmap != nullptr ? 1 : 0;
                 bitmap = std::make_unique<tarnBitmap>(nullptr, 5, 1);
                 done = bitmap->bitmap != nullptr && bitmap->palette != nullptr ? done : 0;
                 Host painter;
                 tarnBitmap gradient(painter.context, 3, 4, 0);
                 gradient.bitmapMOLT(0, 3, 5, 0, painter.context, &painter);
                 return gradient.bitmap != nullptr && painter.context != nullptr ? done : 0;
             },
             [&] { return std::to_string(GetPaletteEntries(bitmap->palette, 0, 0, nullptr)); });
         tarn::removeResources(nullptr);
     }},
    {"screen and start-up",
     [](Trial& trial) {
         int screenWidth = 0;
         trial([&] { return screenWidth = tarnMetrics().cxScreen, *getGlobalPointer() == nullptr ? 1 : -1; },
               [&] { return std::to_string(screenWidth); });
     }},
    {"message and module",
     [](Trial& trial) {
         boxed.reserve(200);
         trial(
             [&] {
                 HINSTANCE module = nullptr;
                 int(__stdcall * function)() = nullptr;
                 SetLastError(ERROR_DISK_FULL);
                 showGetLastError(longText);
                 const int found = loadDllFunc(module, &function, "libm.so.6", "cos", 1);
                 if (module != nullptr) FreeLibrary(module);
                 return GetErrorMode() != 0 ? -1 : boxed.size() > 80 ? found : 0;
             },
             [&] { return boxed; });
         EXPECT_EQ(GetErrorMode(), 0U);
     }},
};

int lowestFreeDescriptor() {
    const int descriptor = ::dup(0);
    ::close(descriptor);
    return descriptor;
}

bool leavesTemporaryFiles() {
    const std::filesystem::recursive_directory_iterator all(world->folder.path());
    return std::any_of(begin(all), end(all),
                       [](const auto& entry) { return entry.path().extension() == ".new"; });
}

TEST(Allocation, EachFailsOnceAndFromThereOn) {
    World files;
    world = &files;
    tarntest::setEnvironment("XDG_DATA_HOME", files.folder.path().c_str());
    tarn::setMessageBox([](const char* text, const char* caption, std::uint32_t) {
        boxed.assign(caption).append(text == nullptr ? "" : text);
        return 1;
    });
    for (const auto& operation : operations) {
        Trial trial;
        operation.run(trial);
        for (const Way way : {Way::once, Way::fromThereOn, Way::toTheEnd}) {
            bool failed = true;
            for (long nth = 1; failed; ++nth) {
                SCOPED_TRACE(std::string(operation.name) + ": " + std::to_string(nth));
                const long live = memory.live, failures = memory.failed;
                const std::int32_t handles = tarn::openHandles();
                const int descriptor = lowestFreeDescriptor();
                const int parts =
                    testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
                trial.way = way, trial.nth = nth;
                operation.run(trial);
                memory.countdown = 0;
                failed = memory.failed != failures;
                EXPECT_EQ(memory.live, live);
                EXPECT_EQ(tarn::openHandles(), handles);
                EXPECT_EQ(lowestFreeDescriptor(), descriptor);
                EXPECT_FALSE(leavesTemporaryFiles());
                if (testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count() !=
                    parts)
                    break;
            }
        }
    }
    tarn::setMessageBox(nullptr);
    tarntest::setEnvironment("XDG_DATA_HOME", nullptr);
    std::printf("%ld allocations failed in %zu operations\n", memory.failed, std::size(operations));
}

TEST(LastError, OfAnotherThreadDoesntMisleadAWrite) {
    const tarntest::TemporaryFolder folder;
    const std::string ini = folder.file("new.ini");
    memory.elsewhere = true;
    EXPECT_TRUE(WritePrivateProfileStringA("s", "k", "v", ini.c_str()));
    memory.elsewhere = false;
    EXPECT_EQ(tarntest::contentOf(ini), "[s]\r\nk=v\r\n");
}

}  // namespace
