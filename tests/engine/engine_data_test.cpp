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
    for (std::int32_t id = 6; id < 40; ++id) record.storeData(id, &value);
    record.storeData(6, nullptr);
    EXPECT_EQ(record.getData(6, &out), 2);
    EXPECT_EQ(out, Owned());
    EXPECT_EQ(record.getMultiData(6, 0, &out), 1);
    record.removeData(5);
    EXPECT_EQ(record.getMultiData(6, 0, &out), 0);
    EXPECT_EQ(record.getData(39, &out), 34);
    EXPECT_EQ(record.getId(34), 39);
    EXPECT_EQ(record.getId(35), -1);
    EXPECT_EQ(record.isMulti(0), 1);
    EXPECT_EQ(record.isMulti(1), 0);
    EXPECT_EQ(record.isMulti(35), 0);
}

TEST(EngineDataTest, AFieldTakesAViewOfItselfAndOfItsPart) {
    const Owned list = listOf({text("inner"), text("other")});
    tarnEngineData record;
    MOLTVARIANT view;
    const auto stored = [&](const MOLTVARIANT* value) {
        record.storeData(1, value);
        EXPECT_EQ(record.getData(1, &view), 0);
        return Owned(&view);
    };
    EXPECT_EQ(stored(&list), list);
    EXPECT_EQ(stored(&view), list);
    EXPECT_EQ(stored(view.payload.list->getAt(0)), text("inner"));
    EXPECT_EQ(stored(record.getRootData()), recordOf({{1, text("inner")}}));
    EXPECT_EQ(stored(nullptr), Owned());
}

TEST(EngineDataTest, WhatIsNoRecordIsNotTakenOver) {
    tarnEngineData record;
    Owned text = tarntest::text("mine"), empty = nothing(tagRecord);
    record.setRootData(&text);
    record.setRootData(&empty);
    record.setRootData(nullptr);
    expectRecord(record, {}, 0);
}

TEST(EngineDataTest, AWholeValueIsTakenOverWithItsRows) {
    const Owned one = whole(1), two = whole(2);
    tarnEngineData record;
    record.dataType = eOperation{3};
    record.setRootData(recordOf({{7, one}, {7, columnOf({})}}).release());
    expectRecord(record, {{7, one}, {7, columnOf({})}}, 0);

    const Keyed counted = {{7, one}, {7, columnOf({{0, two}, {4, one}})}, {185, number(tagShort, 5)}};
    record.setRootData(recordOf({{7, one}, {7, columnOf({{4, one}, {0, two}})}}).release());
    expectRecord(record, counted, 5);
    EXPECT_EQ(record.dataType, 3);

    record.setRootData(record.getRootData());  // its own content stays
    expectRecord(record, counted, 5);
    record.storeData(9, record.getRootData());
    record.setRootData(record.fields->values->getAt(3));  // one of its fields becomes the record
    expectRecord(record, counted, 5);
}

TEST(EngineDataTest, APartThatLiesDeeperIsTakenOver) {
    const Owned part = recordOf({{1, whole(5)}}), list = listOf({part}), vector = vectorOf({part});
    tarnEngineData record;
    const auto payload = [&] { return record.fields->values->getAt(0)->payload; };
    const auto takeOver = [&](MOLTVARIANT* value) {
        record.setRootData(value);
        expectRecord(record, {{1, whole(5)}}, 0);
        record.removeData(1);
    };
    record.storeMultiData(9, 0, &part, 0);
    takeOver(payload().multi->nodes->cells[0]->value);
    record.storeData(9, &list);
    takeOver(payload().list->getAt(0));
    record.storeData(9, &vector);
    takeOver(payload().vector[0]);
    record.setRootData(recordOf({{9, recordOf({{8, part}})}}).release());
    takeOver(payload().record->values->getAt(0));
}

TEST(EngineDataTest, ACopyIsDeepAndStartsWithoutMemory) {
    const Keyed fields = {{7, whole(1)}, {7, rowsOf({whole(1), whole(2)})}, {185, number(tagShort, 2)}};
    tarnEngineData record;
    record.setRootData(recordOf(fields).release());
    record.setDataType(eOperation{5});
    MOLTVARIANT out;
    record.getData(185, &out);
    const tarnEngineData copy(&record);
    record.removeMultiData();
    record.removeData(7);
    expectRecord(copy, fields, 2);
    expectRecord(record, {{185, number(tagShort, 2)}}, 0);
    EXPECT_EQ(copy.dataType, 5);
    EXPECT_EQ(copy.lastId, 0);
    EXPECT_EQ(copy.lastIndex, -1);
    EXPECT_EQ(tarnEngineData(nullptr).isEmpty(), 1);
}

TEST(EngineDataTest, AParameterBlockIsCopiedWhole) {
    tarnEngineParam parameters;
    parameters.words[12] = 4;
    EXPECT_EQ(tarnEngineParam(&parameters).words[12], 4);
    EXPECT_EQ(tarnEngineParam(static_cast<const tarnEngineParam*>(nullptr)).last, -1);
}

}  // namespace
