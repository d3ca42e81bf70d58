// Print items: present/print_data.cpp.

#include "present/print_data.h"
#include "tests/values.h"

namespace {

using tarn::printBullet, tarn::printMultiData;
using namespace tarntest;

TEST(PrintData, TextsArriveAsTag10WithTheirBulletAndBlobsAreCopied) {
    const Owned marker = number(tagPlain9, 0);
    // A value, whether it has a bullet, and the item and the row that it becomes.
    const char* const items =
        "item:10:abc||10:abc, 10:abc;17:abc|bullet|10:\x95 abc, 10:\x95 abc;10:||10:, 10:;"
        "17:NULL||10:, 10: ;10:NULL|bullet|10:\x95 , 10:\x95 ;15:abc|bullet|15:abc, 15:abc";
    expectAnswers(items, [&](auto&, auto& cells) {
        const Owned value = valueOf(cells[0]);
        const std::int32_t flags = cells[1].empty() ? 1 : printBullet;
        tarnPrintData data;
        data.storeData(1, &marker, printMultiData, 0);
        data.storeData(2, &value, flags, 77);
        const _MultiPrintStruct record{1, flags, {}, {10, 11, 12, 13}};
        data.storeMultiData(&record, &value);
        const _PrintStruct& item = *data.getPrintData(1);
        const _MultiPrintStruct& row = *data.getMultiPrintData(1, 0);
        EXPECT_EQ(item.flags + item.extra + row.words[0] + row.words[3], flags + 77 + 23);
        return describe(&item.value) + ", " + describe(&row.value);
    });
}

TEST(PrintData, OnlyTheFirstItemOfAnIdHoldsRows) {
    const Owned marker = number(tagPlain9, 0), value = number(tagLong, 0);
    const HeldClock clock(1999, 11, 18, 9, 5, 7);
    tarnPrintData data;
    data.storeDateTime(printMultiData);
    EXPECT_TRUE(!clock.possible || describe(&data.getPrintData(0)->value) == "10:11/18/1999  9:05:07");
    data.storeData(5, &value, printMultiData, 0);   // another tag: no container
    data.storeData(5, &marker, printMultiData, 0);  // hidden behind it
    data.storeData(6, nullptr, 0, 0);
    data.storeData(0, &marker, printMultiData, 0);                // hidden behind the date
    data.storeData(7, &marker, printMultiData | printBullet, 0);  // the one that holds rows
    data.storeData(7, &marker, printMultiData, 0);
    data.storeData(8, &marker, 0, 0);  // without the flag
    constexpr std::int32_t ids[] = {0, 5, 6, 7, 8, 99};
    for (int i = 0; i < 300; ++i) {
        const std::int32_t id = ids[i % 6];
        const _MultiPrintStruct row{id, 0, {}, {}};
        data.storeMultiData(&row, &value);
        EXPECT_EQ(data.getNumMultiData(id), id == 7 ? i / 6 + 1 : -1) << id;
        EXPECT_EQ(data.getMultiPrintData(id, i / 6) != nullptr, id == 7) << id;
        EXPECT_EQ(data.getMultiPrintData(id, i / 6 + 1), nullptr);
    }
    EXPECT_TRUE(data.getPrintData(6)->multiData->count == 0 && data.getPrintData(8) == nullptr);
}

}  // namespace
