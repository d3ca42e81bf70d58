// What the debugger's printers show: tools/debug/tarnutil-gdb.py.  The program stops in `look`, which sees
// everything below; tests/debug/expected.txt is what gdb prints then.

#include "calendar/market_calendar.h"
#include "core/value.h"
#include "engine/engine_data.h"
#include "store/index_data_file.h"
#include "tests/values.h"

using tarntest::listOf;
using tarntest::text;

// The printers know MOLTVARIANT; what it leads to is never released.
static MOLTVARIANT plain(tarntest::Owned value) {
    return *value.release();
}

[[gnu::noinline]] static void look(int) {}

int main(int count, char**) {
    // One value of each tag, most of them from a stored file.
    tarnIndexDataFile file;
    tarnEngineData record;
    MOLTVARIANT values[19];
    MOLTVARIANT* value = nullptr;
    file.readIndexDataFile(TARN_STORED_FILES "/values.dat");
    for (std::int32_t i = 0; i < 19; ++i) {
        file.getDataRecord(7, i < 18 ? 0 : 2, i % 18, &value);
        values[i] = *value;
    }
    record.loadData(TARN_STORED_FILES "/record.dat", loadReplace);
    record.storeMultiData(336, 1, &values[3], 1);
    [[maybe_unused]] const MOLTVARIANT multi = *record.fields->values->getAt(2);
    [[maybe_unused]] const MOLTVARIANT block = plain(tarntest::block("\1\2\3"));
    [[maybe_unused]] const MOLTVARIANT list = plain(listOf({text("12 \"1/2\"\n"), text(nullptr)}));

    // Damaged ones, and what is too long or leads back to itself.
    MOLTVARIANT lost;
    lost.tag = tagText;
    lost.payload.text = reinterpret_cast<char*>(std::uintptr_t{16});
    MOLTVARIANT circle = plain(tarntest::vectorOf({text("first"), text("second"), text("third")}));
    circle.payload.vector[1] = &circle;
    circle.payload.vector[2] = reinterpret_cast<MOLTVARIANT*>(std::uintptr_t{16});
    MOLTVARIANT tooMany;
    tooMany.copyContent(record.root);
    tooMany.payload.record->count = 1'000'000;
    [[maybe_unused]] const MOLTVARIANT longText = plain(text(std::string(201, 'x').c_str()));
    MOLTVARIANT many = plain(listOf({}));
    for (std::int32_t i = 0; i < 300; ++i) many.payload.list->add(&values[3]);
    const tarnString string("12 1/2");
    const tarnBuffer buffer("@AB", 3);
    tarnString badString;
    badString.length = -1;
    [[maybe_unused]] const PKDATE date{0x3B7E};
    const tarn::Value owned("12 1/2");
    [[maybe_unused]] const tarn::ValueView view(list);
    [[maybe_unused]] const tarn::ValueView noView;
    look(count);
    return 0;
}
