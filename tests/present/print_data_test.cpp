// Print items: present/print_data.cpp.

#include "present/print_data.h"

#include "tests/values.h"

namespace {

using tarn::printBullet, tarn::printMultiData;
using namespace tarntest;

TEST(PrintData, TextsArriveAsTag10WithTheirBulletAndBlobsAreCopied) {
    const struct {
        Owned value;
        std::int32_t flags;
        Owned item, row;
    } rows[] = {
        {text("abc"), 1, text("abc"), text("abc")},
        {text("abc", tagString), printBullet, text("\x95 abc"), text("\x95 abc")},
        {text(""), 1, text(""), text("")},
        {text(nullptr, tagString), 1, text(""), text(" ")},
        {text(nullptr), printBullet, text("\x95 "), text("\x95 ")},
        {blob("abc"), printBullet, blob("abc"), blob("abc")},
        {number(tagDouble, 1.5), 1, number(tagDouble, 1.5), number(tagDouble, 1.5)},
    };
    const Owned marker = number(tagPlain9, 0);
    for (const auto& each : rows) {
        tarnPrintData data;
        data.storeData(1, &marker, printMultiData, 0);
        data.storeData(2, &each.value, each.flags, 77);
        const _MultiPrintStruct record{1, each.flags, {}, {0, 0, 0, 13}};
        data.storeMultiData(&record, &each.value);
        EXPECT_EQ(each.item, data.getPrintData(1)->value);
        EXPECT_EQ(each.row, data.getMultiPrintData(1, 0)->value);
        EXPECT_EQ(data.getPrintData(1)->flags, each.flags);
        EXPECT_EQ(data.getPrintData(1)->extra, 77);
        EXPECT_EQ(data.getMultiPrintData(1, 0)->words[3], 13);
    }
}

TEST(PrintData, OnlyTheFirstItemOfAnIdHoldsRows) {
    const Owned marker = number(tagPlain9, 0), value = number(tagLong, 0);
    const HeldClock clock(1999, 11, 18, 9, 5, 7);
    tarnPrintData data;
    data.storeDateTime(printMultiData);
    const char* const moment = data.getPrintData(0)->value.payload.text;
    EXPECT_STREQ(moment, clock.possible ? "11/18/1999  9:05:07" : moment);
    data.storeData(5, &value, printMultiData, 0);                 // another tag: no container
    data.storeData(6, &marker, 0, 0);                             // without the flag
    data.storeData(7, &marker, printMultiData | printBullet, 0);  // the one that holds rows
    data.storeData(8, nullptr, 0, 0);
    for (const std::int32_t hidden : {0, 5, 6, 7, 8}) data.storeData(hidden, &marker, printMultiData, 0);
    for (const std::int32_t id : {0, 5, 6, 7, 8, 99}) {
        const _MultiPrintStruct row{id, 0, {}, {}};
        data.storeMultiData(&row, &value);
        EXPECT_EQ(data.getNumMultiData(id), id == 7 ? 1 : -1) << id;
        EXPECT_EQ(data.getMultiPrintData(id, 0) != nullptr, id == 7) << id;
        EXPECT_EQ(data.getMultiPrintData(id, 1), nullptr);
    }
    EXPECT_EQ(data.getPrintData(10), nullptr);
}

}  // namespace
