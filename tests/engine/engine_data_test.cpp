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
    EXPECT_EQ(record.isMulti(0), 1);
    EXPECT_EQ(record.isMulti(1), 0);
    EXPECT_EQ(record.isMulti(4), 0);
}

TEST(EngineDataTest, AFieldTakesAViewOfItselfAndOfItsPart) {
    const Owned list = listOf({text("inner"), text("other")});
    tarnEngineData record;
    MOLTVARIANT view;
    const auto expectStored = [&](const MOLTVARIANT* value, const Owned& expected) {
        record.storeData(1, value);
        EXPECT_EQ(record.getData(1, &view), 0);
        EXPECT_EQ(expected, view);
    };
    expectStored(&list, list);
    expectStored(&view, list);
    expectStored(view.payload.list->getAt(0), text("inner"));
    expectStored(record.getRootData(), recordOf({{1, text("inner")}}));
}

TEST(EngineDataTest, AWholeValueIsTakenOverWithItsRows) {
    const Owned one = whole(1), two = whole(2);
    Owned noRecord = text("mine"), empty = nothing(tagRecord);
    tarnEngineData record;
    record.dataType = eOperation{3};
    record.setRootData(&noRecord);
    record.setRootData(&empty);
    record.setRootData(nullptr);
    record.setRootData(recordOf({{7, one}, {7, columnOf({})}}).release());
    expectRecord(record, {{7, one}, {7, columnOf({})}}, 0);
    record.setRootData(recordOf({{7, one}, {7, columnOf({{4, one}, {0, two}})}}).release());
    const Keyed counted = {{7, one}, {7, columnOf({{0, two}, {4, one}})}, {185, number(tagShort, 5)}};
    expectRecord(record, counted, 5);
    record.setRootData(record.getRootData());  // its own content stays
    expectRecord(record, counted, 5);
    EXPECT_EQ(record.dataType, 3);
}

TEST(EngineDataTest, AnyPartOfTheRecordIsTakenOver) {
    const Owned part = recordOf({{1, whole(5)}}), list = listOf({part}), vector = vectorOf({part});
    tarnEngineData record;
    MOLTVARIANT view;
    const auto expectTaken = [&](MOLTVARIANT* value) {
        record.setRootData(value);
        expectRecord(record, {{1, whole(5)}}, 0);
    };
    record.storeData(9, &part);
    expectTaken(record.fields->values->getAt(0));
    record.storeData(9, &list);
    record.getData(9, &view);
    expectTaken(view.payload.list->getAt(0));
    record.storeData(9, &vector);
    record.getData(9, &view);
    expectTaken(view.payload.vector[0]);
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
    EXPECT_EQ(copy.dataType, 5);
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
