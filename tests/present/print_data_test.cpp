// Print items: present/print_data.cpp.

#include <string>

#include "core/string.h"
#include "present/print_data.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

using tarn::printBullet;
using tarn::printMultiData;

// A value that is released with the object.
struct Value : MOLTVARIANT {
    explicit Value(std::int32_t plainTag) {
        tag = plainTag;
        payload.longValue = 4711;
    }
    Value(std::int32_t textTag, const char* text) {
        tag = textTag;
        if (textTag == tagString) {
            payload.string = text == nullptr ? nullptr : new tarnString(text);
        } else {
            payload.text = text == nullptr ? nullptr : newstr(text);
        }
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    ~Value() { destroyContent(); }
};

_MultiPrintStruct rowOf(std::int32_t id, std::int32_t flags = 0) {
    _MultiPrintStruct row;
    row.id = id;
    row.flags = flags;
    for (std::int32_t i = 0; i < 4; ++i) row.words[i] = 10 * id + i;
    return row;
}

TEST(PrintData, TextsArriveAsTag10WithTheirBullet) {
    const struct {
        std::int32_t tag;
        const char* text;
        std::int32_t flags;
        const char* item;
        const char* row;
    } rows[] = {{tagText, "abc", 0, "abc", "abc"},
                {tagText, "abc", printBullet | 1, "\x95 abc", "\x95 abc"},
                {tagString, "abc", 0, "abc", "abc"},
                {tagString, "abc", printBullet, "\x95 abc", "\x95 abc"},
                {tagText, "", 0, "", ""},
                {tagText, nullptr, 0, "", " "},
                {tagString, nullptr, 0, "", " "},
                {tagText, nullptr, printBullet, "\x95 ", "\x95 "}};
    for (const auto& row : rows) {
        tarnPrintData data;
        {
            const Value value(row.tag, row.text), marker(tagPlain9);
            data.storeData(1, &marker, printMultiData, 0);
            data.storeData(2, &value, row.flags, 77);
            const _MultiPrintStruct record = rowOf(1, row.flags);
            data.storeMultiData(&record, &value);
        }
        const _PrintStruct* item = data.getPrintData(1);
        EXPECT_EQ(item->value.tag, tagText);
        EXPECT_STREQ(item->value.payload.text, row.item);
        EXPECT_EQ(item->flags, row.flags);
        EXPECT_EQ(item->extra, 77);
        const _MultiPrintStruct* stored = data.getMultiPrintData(1, 0);
        EXPECT_EQ(stored->value.tag, tagText);
        EXPECT_STREQ(stored->value.payload.text, row.row);
        EXPECT_EQ(stored->words[3], 13);
    }
}

TEST(PrintData, OnlyTheFirstItemOfAnIdHoldsRows) {
    const Value marker(tagPlain9), number(tagLong);
    tarnPrintData data;
    data.storeDateTime(printMultiData);
    data.storeData(5, &number, printMultiData, 0);  // another tag: no container
    data.storeData(5, &marker, printMultiData, 0);  // hidden behind it
    data.storeData(6, &marker, 0, 0);               // without the bit
    data.storeData(0, &marker, printMultiData, 0);  // hidden behind the date
    data.storeData(7, &marker, printMultiData | printBullet, 0);
    for (const std::int32_t id : {0, 5, 6, 99}) {
        const _MultiPrintStruct row = rowOf(id);
        data.storeMultiData(&row, &number);
        EXPECT_EQ(data.getNumMultiData(id), -1) << id;
        EXPECT_EQ(data.getMultiPrintData(id, 0), nullptr) << id;
    }
    EXPECT_EQ(data.getNumMultiData(7), 0);
    data.storeData(7, &marker, printMultiData, 0);
    const _MultiPrintStruct row = rowOf(7);
    for (int i = 0; i < 50; ++i) data.storeMultiData(&row, &number);
    data.storeMultiData(nullptr, &number);
    data.storeMultiData(&row, nullptr);
    EXPECT_EQ(data.getNumMultiData(7), 50);
    EXPECT_NE(data.getMultiPrintData(7, 49), nullptr);
    EXPECT_EQ(data.getMultiPrintData(7, 50), nullptr);
    EXPECT_EQ(data.getMultiPrintData(7, -1), nullptr);
    std::int32_t count = 0;
    while (data.getPrintData(count) != nullptr) ++count;
    EXPECT_EQ(count, 7);
    EXPECT_EQ(data.getPrintData(-1), nullptr);
    EXPECT_EQ(data.getPrintData(6)->multiData->count, 0) << "rows went to the first";
}

TEST(PrintData, ItemsOwnCopiesAndRowsViews) {
    Value wide(tagWideText, nullptr);
    wide.payload.wideText = new char16_t[2]{u'x', 0};
    Value blob(tagBlob);
    blob.payload.blob.data = new unsigned char[3]{1, 0, 2};
    blob.payload.blob.length = 3;
    const Value marker(tagPlain9);
    tarnPrintData data;
    data.storeData(1, &marker, printMultiData, 0);
    const _MultiPrintStruct row = rowOf(1);
    for (const MOLTVARIANT* value : {static_cast<MOLTVARIANT*>(&wide), static_cast<MOLTVARIANT*>(&blob)}) {
        data.storeData(2, value, printBullet, 0);
        data.storeMultiData(&row, value);
    }
    data.storeData(3, nullptr, 0, 0);
    EXPECT_NE(data.getPrintData(1)->value.payload.wideText, wide.payload.wideText);
    EXPECT_EQ(data.getMultiPrintData(1, 0)->value.payload.wideText, wide.payload.wideText);
    for (const MOLTVARIANT& copy : {data.getPrintData(2)->value, data.getMultiPrintData(1, 1)->value}) {
        EXPECT_EQ(copy.tag, tagBlob);
        EXPECT_EQ(copy.payload.blob.length, 3);
        EXPECT_NE(copy.payload.blob.data, blob.payload.blob.data);
        EXPECT_EQ(copy.payload.blob.data[2], 2);
    }
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
    EXPECT_EQ(data.getPrintData(0)->id, 0);
}

#endif

}  // namespace
