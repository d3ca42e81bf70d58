// The record and its single fields: engine/engine_data.cpp.

#include "engine/engine_data.h"

#include "tests/engine/shown.h"

namespace {

using namespace tarntest;

// Random work on fields and columns of few ids against ordered containers.
TEST(EngineDataTest, RandomWorkOnFieldsMatchesAModel) {
    struct Field {
        std::int32_t id, column, value;
    };
    std::mt19937 random(7);
    tarnEngineData record;
    std::vector<Field> model;
    const auto find = [&](std::int32_t id, int column) {
        const auto same = [&](const Field& f) { return f.id == id && f.column == column; };
        return std::find_if(model.begin(), model.end(), same);
    };
    for (std::int32_t step = 0; step < 20'000; ++step) {
        const auto id = static_cast<std::int32_t>(random() % 60) - 30;
        const auto probe = step == 0 ? 0 : static_cast<std::int32_t>(random() % 60) - 30;
        for (const int kind : {0, 1}) {
            Owned out = number(tagLong, 1);  // at first the memory of the last search holds the id 0
            const auto field = find(probe, kind);
            const auto index = field == model.end() ? -1 : static_cast<std::int32_t>(field - model.begin());
            ASSERT_EQ(kind != 0 ? record.getMultiData(probe, 0, &out) : record.getData(probe, &out), index);
            ASSERT_EQ(describe(&out), index < 0 ? "0:0" : "3:" + std::to_string(field->value));
            ASSERT_EQ(record.isMulti(index), index >= 0 ? kind : 0);
            ASSERT_EQ(record.getId(index), index < 0 ? -1 : probe);
        }
        const Owned value = number(tagLong, step);
        const int column = step % 3 == 0;
        const auto known = find(id, column);
        if (random() % 40 == 0) {
            record.removeMultiData();
            std::erase_if(model, [](const Field& f) { return f.column != 0; });
        } else if (random() % 3 == 0) {
            record.removeData(id);
            if (const auto field = find(id, false); field != model.end()) model.erase(field);
        } else {
            column != 0 ? record.storeMultiData(id, 0, &value, 0) : record.storeData(id, &value);
            if (known != model.end()) known->value = step;
            if (known == model.end()) model.push_back({id, column, step});
        }
        ASSERT_EQ(record.fields->count, static_cast<std::int32_t>(model.size()));
    }
}

TEST(EngineDataTest, AFieldTakesAViewOfItselfAndOfItsPart) {
    tarnEngineData record;
    const Owned list = valueOf("20:[10:inner,10:other]");
    MOLTVARIANT view;
    const auto stored = [&](const MOLTVARIANT* value) {
        record.storeData(1, value);
        EXPECT_EQ(record.getData(1, &view), 0);
        return describe(&view);
    };
    EXPECT_EQ(stored(&list), describe(&list));
    EXPECT_EQ(stored(&view), describe(&list));
    EXPECT_EQ(stored(view.payload.list->getAt(0)), "10:inner");
    EXPECT_EQ(stored(record.getRootData()), "22:[1=10:inner]");  // the record in a field of its own
    EXPECT_EQ(stored(nullptr), "0:0");
}

TEST(EngineDataTest, AWholeValueIsTakenOverWithItsRows) {
    tarnEngineData record;
    record.dataType = eOperation{3};
    Owned notTaken = valueOf("10:mine");
    for (MOLTVARIANT* const value :
         {static_cast<MOLTVARIANT*>(&notTaken), static_cast<MOLTVARIANT*>(nullptr)})
        record.setRootData(value);
    EXPECT_EQ(shown(record), " 0");
    record.setRootData(valueOf("22:[7=3:1,7=21:[]]").release());  // a column without cells counts nothing
    EXPECT_EQ(shown(record), "7=3:1,7=21:[] 0");
    record.setRootData(valueOf("22:[7=3:1,7=21:[4=3:1,0=3:1]]").release());
    record.setRootData(record.getRootData());  // its own content stays
    EXPECT_EQ(shown(record), "7=3:1,7=21:[0=3:1,4=3:1],185=2:5 5");
    EXPECT_EQ(record.dataType, 3);
    const Owned inner(record.getRootData());
    record.storeData(9, &inner);
    record.setRootData(record.fields->values->getAt(3));  // one of its fields becomes the record
    EXPECT_EQ(shown(record), "7=3:1,7=21:[0=3:1,4=3:1],185=2:5 5");
}

TEST(EngineDataTest, ACopyIsDeepAndStartsWithoutMemory) {
    tarnEngineData record;
    record.setRootData(valueOf("22:[7=3:1,7=21:[2=3:1,0=3:1]]").release());
    record.setDataType(eOperation{5});
    MOLTVARIANT out;
    record.getData(185, &out);
    const tarnEngineData copy(&record);
    EXPECT_TRUE(copy.dataType == 5 && copy.lastId == 0 && copy.lastIndex == -1);
    record.removeMultiData();
    record.removeData(7);
    EXPECT_EQ(shown(copy) + " " + shown(record), "7=3:1,7=21:[0=3:1,2=3:1],185=2:3 3 185=2:3 0");
    EXPECT_EQ(tarnEngineData(nullptr).isEmpty(), 1);
    tarnEngineParam parameters;
    parameters.words[12] = 4;
    EXPECT_EQ(tarnEngineParam(&parameters).words[12], 4);
    EXPECT_EQ(tarnEngineParam(static_cast<const tarnEngineParam*>(nullptr)).last, -1);
}

}  // namespace
