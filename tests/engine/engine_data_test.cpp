// The record and its single fields: engine/engine_data.cpp, engine/field_lookup.h.

#include "engine/engine_data.h"

#include "tests/engine/records.h"

namespace {

using namespace tarntest;

TEST(EngineDataTest, FieldsKeepTheirOrderAndTheirKind) {
    const Owned value = whole(1);
    tarnEngineData record;
    Owned out = value;
    EXPECT_EQ(record.getData(0, &out), -1);  // the memory of the last search holds the id 0
    EXPECT_EQ(out, Owned());
    record.storeData(5, &value);
    record.storeMultiData(6, 0, &value, 0);
    for (const std::int32_t id : {6, 7, 8}) record.storeData(id, &value);
    record.storeData(6, nullptr);
    EXPECT_EQ(record.getData(8, &out), 4);
    record.removeData(5);
    EXPECT_EQ(record.getData(8, &out), 3);
    expectRecord(record, {{6, rowsOf({value})}, {6, Owned()}, {7, value}, {8, value}}, 1);
    EXPECT_EQ(record.getId(3), 8);
    EXPECT_EQ(record.getId(4), -1);
}

TEST(EngineDataTest, AWholeValueIsTakenOverWithItsRows) {
    const Owned one = whole(1), two = whole(2);
    tarnEngineData record;
    record.setRootData(nullptr);
    record.setRootData(recordOf({{7, one}, {7, columnOf({})}}).release());
    expectRecord(record, {{7, one}, {7, columnOf({})}}, 0);
    record.setRootData(recordOf({{7, one}, {7, columnOf({{4, one}, {0, two}})}}).release());
    const Keyed counted = {{7, one}, {7, columnOf({{0, two}, {4, one}})}, {185, number(tagShort, 5)}};
    expectRecord(record, counted, 5);
    record.setRootData(record.getRootData());  // its own content stays
    expectRecord(record, counted, 5);
}

TEST(EngineDataTest, AnyPartOfTheRecordIsTakenOver) {
    const Owned part = recordOf({{1, whole(5)}});
    tarnEngineData record;
    for (const Owned& whole : {part, listOf({part}), vectorOf({part})}) {
        record.storeData(9, &whole);
        MOLTVARIANT* const field = record.fields->values->getAt(record.fields->count - 1);
        MOLTVARIANT* const inList = whole.tag == tagList ? field->payload.list->getAt(0) : field;
        record.setRootData(whole.tag == tagVector ? field->payload.vector[0] : inList);
        expectRecord(record, {{1, tarntest::whole(5)}}, 0);
    }
}

TEST(EngineDataTest, ACopyIsDeepAndStartsWithoutMemory) {
    const Keyed fields = {{7, whole(1)}, {7, rowsOf({whole(1), whole(2)})}, {185, number(tagShort, 2)}};
    tarnEngineData record;
    record.setRootData(recordOf(fields).release());
    record.setDataType(eOperation{5});
    record.getData(185, nullptr);
    const tarnEngineData copy(&record);
    record.removeMultiData();
    record.removeData(7);
    expectRecord(copy, fields, 2);
    EXPECT_EQ(copy.dataType, 5);
    EXPECT_EQ(copy.lastIndex, -1);
    EXPECT_EQ(tarnEngineData(nullptr).isEmpty(), 1);
    tarnEngineParam parameters;
    parameters.words[12] = 4;
    EXPECT_EQ(tarnEngineParam(&parameters).words[12], 4);
}

}  // namespace
