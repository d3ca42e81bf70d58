// engine/operations.cpp.

#include <map>

#include "core/exception.h"
#include "engine/engine_data.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::describe;
using tarntest::number;
using tarntest::Owned;
using tarntest::text;

struct Host : tarnGlobalInterfaces, tarnFieldDictionary {
    std::map<std::int32_t, std::int32_t> types;
    std::vector<std::int32_t> asked;
    bool hasDictionary = true;

    tarnUserDialog* userDialog() override { return nullptr; }
    tarnFieldDictionary* fieldDictionary() override { return hasDictionary ? this : nullptr; }
    std::int32_t getFieldType(std::int32_t id) override {
        asked.push_back(id);
        return types[id];
    }
};

TEST(Operations, TheDictionaryDecidesWhatATextBecomes) {
    const struct {
        std::int32_t code;
        Owned field, result;
    } rows[] = {
        {1, text("70000"), number(tagShort, 4464)},  // 70000 - 65536
        {1, text("-5 or so"), number(tagShort, -5)},
        {2, text("12"), number(tagLong, 12)},
        {3, text("no number"), number(tagLong, 0)},
        {4, text("abc"), number(tagChar, 'a')},
        {4, text(""), number(tagChar, 0)},
        {5, text("text"), text("text")},
        {5, text("string", tagString), text("string")},
        {6, text("1.5"), number(tagFloat, 1.5)},
        {7, text("3.5"), number(tagDouble, 3.5)},
        {7, text("-2.25e1", tagString), number(tagDouble, -22.5)},
        {0, text("0"), text("0")},
        {8, text("8"), text("8")},
        {-1, text("-1", tagString), text("-1")},
        {0x10007, text("2.5"), number(tagDouble, 2.5)},  // the low 16 bits count
        {-0x7FFFFFFE, text("7"), number(tagLong, 7)},
        {0x70000, text("70"), text("70")},
    };
    tarnEngineData record;
    Host host;
    std::vector<std::int32_t> ids;
    for (const auto& row : rows) {
        ids.push_back(1000 - static_cast<std::int32_t>(ids.size()));
        host.types[ids.back()] = row.code;
        record.storeData(ids.back(), &row.field);
    }
    record.convertOperation(&host);
    EXPECT_EQ(host.asked, ids);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto index = static_cast<std::int32_t>(i);
        EXPECT_EQ(record.getId(index), ids[i]);
        EXPECT_EQ(describe(record.fields->values->getAt(index)), describe(&rows[i].result)) << ids[i];
    }
}

TEST(Operations, WhatHoldsNoTextIsNotAskedFor) {
    tarnEngineData record;
    const Owned fields[] = {number(tagLong, 5), number(tagDouble, 2.5), text(nullptr),
                            text(nullptr, tagString), Owned()};
    for (const Owned& field : fields) record.storeData(record.fields->count, &field);
    const Owned cell = text("7");
    record.storeMultiData(40, 0, &cell, 0);
    const std::string before = describe(record.root);
    Host host;
    record.convertOperation(&host);
    EXPECT_EQ(describe(record.root), before);
    EXPECT_TRUE(host.asked.empty());

    record.storeData(50, &cell);
    const std::string unasked = describe(record.root);
    host.types[50] = 2;
    host.hasDictionary = false;
    record.convertOperation(&host);
    record.convertOperation(nullptr);
    EXPECT_EQ(describe(record.root), unasked);
}

struct Descriptions : tarnFieldDescriptions {
    char entry[80] = {};
    const void* getFieldRecord(std::int32_t id) override { return id == 5 ? entry : nullptr; }
};

TEST(Operations, ADescriptionStands71BytesBehindItsEntry) {
    tarnEngineData record;
    EXPECT_EQ(record.getDataDescription(5), nullptr);
    Descriptions descriptions;
    record.descriptions = &descriptions;
    record.setDataType(static_cast<eOperation>(-7));
    tarnEngineData copy(&record);
    for (tarnEngineData* each : {&record, &copy}) {
        EXPECT_EQ(each->getDataDescription(5), descriptions.entry + 71);
        EXPECT_EQ(each->getDataDescription(6), nullptr);
        EXPECT_EQ(each->dataType, -7);
    }
}

}  // namespace
