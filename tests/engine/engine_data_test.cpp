// The record and its single fields: engine/engine_data.cpp.

#include "engine/engine_data.h"

#include <map>
#include <optional>
#include <random>
#include <vector>

#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::describe;
using tarntest::number;
using tarntest::Owned;
using tarntest::text;

std::string described(tarnEngineData& record) {
    return describe(record.getRootData());
}

// A record value with one column whose rows are given, and a single field of the same id.
MOLTVARIANT* recordValue(std::initializer_list<std::int32_t> rows) {
    tarnEngineData record;
    const Owned one = number(tagLong, 1);
    record.storeData(7, &one);
    record.storeMultiData(7, 0, nullptr, 1);
    record.removeMultiData(7, 0);
    for (const std::int32_t row : rows) record.storeMultiData(7, row, &one, 1);
    return Owned(record.getRootData()).release();
}

TEST(EngineDataTest, ANewRecordHasNothing) {
    tarnEngineData record;
    Owned out = number(tagLong, 1);
    EXPECT_EQ(record.isEmpty(), 1);
    EXPECT_EQ(record.getId(0), -1);
    EXPECT_EQ(record.getData(0, &out), -1);  // the memory of the last search holds id 0
    EXPECT_EQ(out.tag, tagEmpty);
    EXPECT_EQ(record.getNumMulti() + record.isMulti(0) + record.isMulti(-1), 0);
    EXPECT_EQ(record.getRootData()->payload.record, record.fields);
}

// Random work on fields and columns of few ids against ordered containers.
TEST(EngineDataTest, RandomWorkOnFieldsMatchesAModel) {
    struct Field {
        std::int32_t id;
        bool column;
        std::int32_t value;
    };
    std::mt19937 random(7);
    tarnEngineData record;
    std::vector<Field> model;
    const auto find = [&](std::int32_t id, bool column) {
        return std::find_if(model.begin(), model.end(),
                            [&](const Field& f) { return f.id == id && f.column == column; });
    };
    for (std::int32_t step = 0; step < 20'000; ++step) {
        const auto id = static_cast<std::int32_t>(random() % 60) - 30;
        const Owned value = number(tagLong, step);
        const bool column = step % 3 == 0;
        const auto known = find(id, column);
        if (random() % 40 == 0) {
            record.removeMultiData();
            std::erase_if(model, [](const Field& f) { return f.column; });
        } else if (random() % 3 == 0) {
            record.removeData(id);
            if (const auto field = find(id, false); field != model.end()) model.erase(field);
        } else {
            if (column) record.storeMultiData(id, 0, &value, 0);
            if (!column) record.storeData(id, &value);
            if (known != model.end()) {
                known->value = step;
            } else {
                model.push_back({id, column, step});
            }
        }
        const auto probe = static_cast<std::int32_t>(random() % 60) - 30;
        for (const bool kind : {false, true}) {
            MOLTVARIANT out;
            const auto field = find(probe, kind);
            const auto index = field == model.end() ? -1 : static_cast<std::int32_t>(field - model.begin());
            ASSERT_EQ(kind ? record.getMultiData(probe, 0, &out) : record.getData(probe, &out), index);
            ASSERT_EQ(out.payload.longValue, index < 0 ? 0 : field->value);
            ASSERT_EQ(record.isMulti(index), index >= 0 && kind ? 1 : 0);
            ASSERT_EQ(record.getId(index), index < 0 ? -1 : probe);
        }
        ASSERT_EQ(record.fields->count, static_cast<std::int32_t>(model.size()));
    }
}

TEST(EngineDataTest, AFieldTakesAViewOfItselfAndOfItsPart) {
    tarnEngineData record;
    const Owned list = tarntest::listOf(text("inner"), text("other"));
    record.storeData(1, &list);
    MOLTVARIANT view;
    record.getData(1, &view);
    record.storeData(1, &view);
    record.getData(1, &view);
    EXPECT_EQ(describe(&view), describe(&list));
    record.storeData(1, view.payload.list->getAt(0));
    record.getData(1, &view);
    EXPECT_STREQ(view.payload.text, "inner");
    record.storeData(1, record.getRootData());  // the record in a field of its own
    record.getData(1, &view);
    EXPECT_EQ(view.tag, tagRecord);
    record.storeData(2, nullptr);
    EXPECT_EQ(record.getData(2, &view), 1);
    EXPECT_EQ(view.tag, tagEmpty);
}

TEST(EngineDataTest, AWholeValueIsTakenOverWithItsRows) {
    tarnEngineData record;
    record.dataType = eOperation{3};
    Owned notTaken = text("mine");
    record.setRootData(&notTaken);
    record.setRootData(nullptr);
    EXPECT_EQ(record.isEmpty(), 1);

    MOLTVARIANT out;
    record.setRootData(recordValue({}));  // a column without cells counts nothing
    EXPECT_EQ(record.getNumMulti(), 0);
    EXPECT_EQ(record.getData(185, &out), -1);
    record.setRootData(recordValue({4, 0}));
    EXPECT_EQ(record.getNumMulti(), 5);
    EXPECT_EQ(record.getData(185, &out), 2);
    EXPECT_EQ(out.tag, tagShort);
    EXPECT_EQ(out.payload.shortValue, 5);
    EXPECT_EQ(record.dataType, 3);

    record.setRootData(record.getRootData());  // its own content stays
    EXPECT_EQ(record.getData(185, &out), 2);
    const Owned inner(record.getRootData());
    record.storeData(9, &inner);
    record.setRootData(record.fields->values->getAt(3));  // one of its fields becomes the record
    EXPECT_EQ(described(record), describe(&inner));
}

TEST(EngineDataTest, ACopyIsDeepAndStartsWithoutMemory) {
    tarnEngineData record;
    record.setRootData(recordValue({2, 0}));
    record.setDataType(eOperation{5});
    MOLTVARIANT out;
    record.getData(185, &out);
    const std::string before = described(record);
    tarnEngineData copy(&record);
    EXPECT_EQ(copy.getNumMulti(), 3);
    EXPECT_EQ(copy.dataType, 5);
    EXPECT_EQ(copy.lastId, 0);
    EXPECT_EQ(copy.lastIndex, -1);
    record.removeMultiData();
    record.removeData(7);
    EXPECT_EQ(described(copy), before);

    tarnEngineData empty(nullptr);
    EXPECT_EQ(empty.isEmpty(), 1);
    tarnEngineParam parameters;
    parameters.words[12] = 4;
    EXPECT_EQ(tarnEngineParam(&parameters).words[12], 4);
    EXPECT_EQ(tarnEngineParam(static_cast<const tarnEngineParam*>(nullptr)).last, -1);
}

}  // namespace
