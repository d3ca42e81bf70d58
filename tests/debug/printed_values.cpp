// What the debugger's printers are shown: tools/debug/tarnutil-gdb.py.  The program stops in `look` with
// everything below in its sight; tests/debug/expected.txt is what gdb prints then.

#include "calendar/market_calendar.h"
#include "engine/engine_data.h"
#include "tests/values.h"

namespace {

using tarntest::number;
using tarntest::text;

[[gnu::noinline]] void look(int) {}

void put(MOLTVARIANT& place, tarntest::Owned value) {
    place.assignContent(value.release());
}

}  // namespace

int main(int count, char**) {
    // One value of each tag.
    MOLTVARIANT tags[23];
    for (std::int32_t tag = 0; tag < 23; ++tag) tags[tag].tag = tag;
    for (const std::int32_t tag : {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 14, 18, 19})
        put(tags[tag], number(tag, tag == 2 ? -300 : 65.5));
    put(tags[10], text("12 \"1/2\"\n"));
    put(tags[11], tarntest::wideText(u"caf\u00E9"));
    put(tags[13], tarntest::vectorOf(number(3, 1), tarntest::vectorOf(text("in"), number(5, 0.25))));
    put(tags[15], tarntest::blob({"\0\x7F\xFF", 3}));
    tags[16].payload.block = new unsigned char[16]{1, 2, 3};
    put(tags[17], text("a string", tagString));
    put(tags[20], tarntest::listOf(number(2, 7), text(nullptr)));

    tarnEngineData record;
    record.storeData(17, &tags[5]);
    for (const std::int32_t row : {3, 0, 1})
        record.storeMultiData(336, row, row == 0 ? nullptr : &tags[13], 1);
    tags[22] = *record.root;
    tags[21] = *record.fields->values->getAt(1);

    // Damaged ones, and what is too long or leads back to itself.
    MOLTVARIANT unknown, lost, circle, lessThanNone, tooMany, longText, many;
    unknown.tag = 99;
    lost.tag = tagText;
    lost.payload.text = reinterpret_cast<char*>(std::uintptr_t{16});
    MOLTVARIANT lostVector(lost);
    put(circle, tarntest::vectorOf(text("first"), text("second"), text("third")));
    circle.payload.vector[1] = &circle;
    circle.payload.vector[2] = reinterpret_cast<MOLTVARIANT*>(std::uintptr_t{16});
    put(lessThanNone, tarntest::listOf());
    lessThanNone.payload.list->count = -5;
    tooMany.copyContent(record.root);
    tooMany.payload.record->count = 1'000'000;
    put(longText, text(std::string(201, 'x').c_str()));
    put(many, tarntest::listOf());
    for (std::int32_t i = 0; i < 300; ++i) many.payload.list->add(&tags[3]);
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
