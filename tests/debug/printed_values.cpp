// What the debugger's printers are shown: tools/debug/tarnutil-gdb.py.  The program stops in `look` with
// everything below in its sight; tests/debug/expected.txt is what gdb prints then.

#include "calendar/market_calendar.h"
#include "engine/engine_data.h"
#include "store/index_data_file.h"
#include "tests/values.h"

using tarntest::valueOf;

[[gnu::noinline]] static void look(int) {}

int main(int count, char**) {
    // One value of each tag, most of them from a stored file.
    tarnIndexDataFile file;
    tarnEngineData record;
    MOLTVARIANT values[19], *value = nullptr;
    file.readIndexDataFile(TARN_STORED_FILES "/values.dat");
    for (std::int32_t i = 0; i < 19; ++i) {
        file.getDataRecord(7, i < 18 ? 0 : 2, i % 18, &value);
        values[i] = *value;
    }
    record.loadData(TARN_STORED_FILES "/record.dat", loadReplace);
    record.storeMultiData(336, 1, &values[18], 1);
    [[maybe_unused]] const MOLTVARIANT multi = *record.fields->values->getAt(2);
    MOLTVARIANT block, list;
    block.tag = tagBlock;
    block.payload.block = new unsigned char[16]{1, 2, 3};
    list = *valueOf("20:[10:12 \"1/2\"\n,10:NULL]").release();

    // Damaged ones, and what is too long or leads back to itself.
    MOLTVARIANT unknown, lost, circle, lessThanNone, tooMany, longText, many;
    unknown.tag = 99;
    lost.tag = tagText;
    lost.payload.text = reinterpret_cast<char*>(std::uintptr_t{16});
    circle = *valueOf("13:[10:first,10:second,10:third]").release();
    circle.payload.vector[1] = &circle;
    circle.payload.vector[2] = reinterpret_cast<MOLTVARIANT*>(std::uintptr_t{16});
    lessThanNone = *valueOf("20:[]").release();
    lessThanNone.payload.list->count = -5;
    tooMany.copyContent(record.root);
    tooMany.payload.record->count = 1'000'000;
    longText = *valueOf("10:" + std::string(201, 'x')).release();
    many = *valueOf("20:[]").release();
    for (std::int32_t i = 0; i < 300; ++i) many.payload.list->add(&values[3]);
    const tarnString string("12 1/2");
    const tarnBuffer buffer("@AB", 3);
    tarnString badString;
    tarnBuffer badBuffer;
    badString.length = badBuffer.length = -1;
    [[maybe_unused]] const multiColumn noColumn{};
    [[maybe_unused]] const PKDATE date{0x3B7E}, noDate{};
    look(count);
    return 0;
}
