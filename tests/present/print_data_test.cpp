// Print items: present/print_data.cpp.

#include <tuple>

#include "core/string.h"
#include "present/print_data.h"
#include "tests/support.h"

namespace {

using tarn::printBullet;
using tarn::printMultiData;

// A value that owns nothing; the payload is any pointer.
MOLTVARIANT valueOf(std::int32_t tag, const void* payload = nullptr) {
    MOLTVARIANT value;
    value.tag = tag;
    value.payload.block = static_cast<unsigned char*>(const_cast<void*>(payload));
    return value;
}

_MultiPrintStruct rowOf(std::int32_t id, std::int32_t flags = 0) {
    return {id, flags, valueOf(tagLong), {10 * id, 11, 12, 13}};
}

const MOLTVARIANT marker = valueOf(tagPlain9), number = valueOf(tagLong);

TEST(PrintData, TextsArriveAsTag10WithTheirBullet) {
    const tarnString abc("abc");
    const std::tuple<MOLTVARIANT, std::int32_t, std::string> rows[] = {
        {valueOf(tagText, "abc"), 1, "abc|abc"},
        {valueOf(tagString, &abc), printBullet, "\x95 abc|\x95 abc"},
        {valueOf(tagText, ""), 0, "|"},
        {valueOf(tagString), 0, "| "},
        {valueOf(tagText), printBullet, "\x95 |\x95 "}};
    for (const auto& [value, flags, texts] : rows) {
        tarnPrintData data;
        data.storeData(1, &marker, printMultiData, 0);
        data.storeData(2, &value, flags, 77);
        const _MultiPrintStruct record = rowOf(1, flags);
        data.storeMultiData(&record, &value);
        const _PrintStruct& item = *data.getPrintData(1);
        const _MultiPrintStruct& row = *data.getMultiPrintData(1, 0);
        EXPECT_EQ(item.value.payload.text + ("|" + std::string(row.value.payload.text)), texts);
        EXPECT_TRUE(item.value.tag == tagText && row.value.tag == tagText);
        EXPECT_EQ(item.flags + item.extra + row.words[0] + row.words[3], flags + 77 + 23);
    }
}

TEST(PrintData, OnlyTheFirstItemOfAnIdHoldsRows) {
    tarnPrintData data;
    data.storeDateTime(printMultiData);
    data.storeData(5, &number, printMultiData, 0);                // another tag: no container
    data.storeData(5, &marker, printMultiData, 0);                // hidden behind it
    data.storeData(6, &marker, 0, 0);                             // without the bit
    data.storeData(0, &marker, printMultiData, 0);                // hidden behind the date
    data.storeData(7, &marker, printMultiData | printBullet, 0);  // the one that holds rows
    EXPECT_EQ(data.getNumMultiData(7), 0);
    data.storeData(7, &marker, printMultiData, 0);
    for (int i = 0; i < 50; ++i) {
        for (const std::int32_t id : {0, 5, 6, 7, 99}) {
            const _MultiPrintStruct row = rowOf(id);
            data.storeMultiData(&row, &number);
            data.storeMultiData(&row, nullptr);
            EXPECT_EQ(data.getNumMultiData(id), id == 7 ? i + 1 : -1) << id;
            EXPECT_EQ(data.getMultiPrintData(id, i) != nullptr, id == 7) << id;
            EXPECT_EQ(data.getMultiPrintData(id, i + 1), nullptr);
        }
    }
    data.storeMultiData(nullptr, &number);
    EXPECT_EQ(data.getPrintData(6)->multiData->count, 0);
    EXPECT_EQ(data.getPrintData(7), nullptr);
}

TEST(PrintData, ItemsOwnCopiesAndRowsOwnBlobsAlone) {
    unsigned char bytes[16] = {1, 0, 2};
    MOLTVARIANT values[] = {valueOf(tagBlock, bytes), valueOf(tagBlob, bytes)};
    values[1].payload.blob.length = 3;
    tarnPrintData data;
    data.storeData(1, &marker, printMultiData, 0);
    const _MultiPrintStruct row = rowOf(1);
    for (const MOLTVARIANT& value : values)
        data.storeData(2, &value, printBullet, 0), data.storeMultiData(&row, &value);
    data.storeData(3, nullptr, 0, 0);
    EXPECT_NE(data.getPrintData(1)->value.payload.block, bytes);
    EXPECT_EQ(data.getMultiPrintData(1, 0)->value.payload.block, bytes);
    bytes[2] = 9;
    EXPECT_EQ(data.getPrintData(2)->value.payload.blob.data[2], 2);
    EXPECT_EQ(data.getMultiPrintData(1, 1)->value.payload.blob.data[2], 2);
    EXPECT_EQ(data.getPrintData(3)->value.tag, tagEmpty);
}

#if !defined(_WIN32)

TEST(PrintData, TheDateIsUniversalAndTheTimeLocal) {
    const SYSTEMTIME utc{1999, 11, 4, 18, 2, 0, 0, 0}, local{1999, 11, 3, 17, 9, 5, 7, 0};
    tarn::setClock(&utc, &local);
    tarnPrintData data;
    data.storeDateTime(printBullet);
    tarn::setClock(nullptr, nullptr);
    EXPECT_STREQ(data.getPrintData(0)->value.payload.text, "11/18/1999  9:05:07");
    EXPECT_EQ(data.getPrintData(0)->flags, printBullet);
}

#endif

}  // namespace
