// Columns of rows: engine/multi_data.cpp, engine/column.cpp.  fuzz/record_work_fuzz.cpp has them beside a model.

#include "core/value_owner.h"
#include "tests/engine/records.h"
#include "tests/plain/record_model.h"

namespace {

using namespace tarntest;

struct MultiDataTest : testing::Test {
    tarnEngineData record;
    tarnplain::RecordModel model;

    void store(int id, int row, const Owned& cell) { record.storeMultiData(id, row, &cell, 0); }
    void add(int id, int row, const Owned& cell) { record.storeMultiData(id, row, &cell, 1); }
    void insert(int id, int row, const Owned& cell) { record.insertMultiData(id, row, &cell); }
};

TEST_F(MultiDataTest, AValueIsFoundByItsPositionInItsOwnColumn) {
    const Owned ten = whole(10), sameNumber = number(tagNumber, 10), empty;
    MOLTVARIANT out;
    store(6, 0, ten);
    add(7, 5, whole(5));
    add(7, 1, ten);
    EXPECT_EQ(record.findMultiData(7, &ten), 1);    // a position, while the column isn't sorted
    EXPECT_EQ(record.getMultiData(7, 5, &out), 1);  // the column's index, not the row
    EXPECT_EQ(record.findMultiData(7, &ten), 0);
    EXPECT_EQ(record.getMultiData(7, 4, &out), -1);
    EXPECT_EQ(record.findMultiData(6, &ten), 0);  // the first field
    EXPECT_EQ(record.findMultiData(8, &ten), -1);
    EXPECT_EQ(record.findMultiData(7, &sameNumber), -1);
    record.moveMultiData(0, 9);  // column 7 gets a cell without a value, which equals nothing
    EXPECT_EQ(record.findMultiData(7, &empty), -1);
}

// Pages of 1 to 331 rows that overlap, newest first or in any order, with look-ups and other changes between.
TEST_F(MultiDataTest, LatePagesLandWhereThePlainModelHasThem) {
    std::mt19937 random(6);
    for (int step = 0; step < 120; ++step) {
        const int page = step % 20 < 10 ? 9 - step % 10 : static_cast<int>(random() % 10);
        const auto bothDo = [&](unsigned operation, int row) {
            const Owned value = whole(step * 1000 + row);
            tarnplain::work(record, operation, 7, row, 0, &value);
            tarnplain::work(model, operation, 7, row, 0, &value);
        };
        if (step % 10 == 0) bothDo(8, 0);
        for (int i = 0, row = page * 50; i <= step / 10 * 30; ++i, row += 3)
            bothDo(model.hasRow(7, row) ? 1 : 0, row);
        const auto [found, expected] = model.answersOf(record);
        ASSERT_EQ(found, expected) << step;
        for (const unsigned operation : {1U, 2U, 3U, 4U}) bothDo(operation, static_cast<int>(random() % 900));
    }
}

TEST_F(MultiDataTest, ValuesOfAClientLieAmongThoseOfTheRecord) {
    for (const int row : {0, 1, 2}) store(7, row, text("the record's"));
    nodeList& nodes = *record.fields->values->getAt(0)->payload.multi->nodes;
    nodes.cells[1]->value->destroyContent();
    nodes.cells[1]->value = text("put there").release();
    MOLTVARIANT* const added = text("added").release();
    nodes.add(added, 3);
    record.moveMultiData(3, 0);
    store(7, 2, text("over it"));  // the row has moved
    EXPECT_EQ(nodes.removeCell(0), added);
    EXPECT_EQ(text("the record's"), *tarn::OwnedValue(nodes.removeCell(0)));
    EXPECT_EQ(text("over it"), *nodes.cells[0]->value);
    nodes.add(added, 9);
    record.removeMultiData(7, 2);
    expectRecord(record, {{7, columnOf({{3, text("the record's")}, {9, text("added")}})}}, 3);
    nodes.release();
    EXPECT_EQ(text("added"), *tarn::OwnedValue(added));
}

TEST_F(MultiDataTest, ACellTakesNullAndAViewOfItself) {
    const Owned abc = text("abc");
    MOLTVARIANT view;
    record.insertMultiData(7, 2, nullptr);
    record.storeMultiData(7, 0, &abc, 0);
    record.getMultiData(7, 0, &view);
    record.storeMultiData(7, 0, &view, 0);
    record.getMultiData(7, 0, &view);
    record.insertMultiData(7, 0, &view);
    expectRecord(record, {{7, columnOf({{0, abc}, {1, abc}, {3, Owned()}})}}, 4);
}

TEST_F(MultiDataTest, TheCountOfRowsIsWhatTheStepsMakeIt) {
    record.removeMultiData(3);
    EXPECT_EQ(record.getNumMulti(), -1);
    store(1, INT32_MAX, whole(1));
    insert(1, 5, whole(2));  // the row above wraps too, and sorts in front
    expectRecord(record, {{1, columnOf({{INT32_MIN, whole(1)}, {5, whole(2)}})}}, 6);
}

// An empty cell and a single field stay behind, but for the field -26; of a column no more cells count than
// there are rows.
TEST_F(MultiDataTest, AppendedRowsKeepTheirDistance) {
    const Owned x = text("x");
    store(1, 1, whole(1));
    tarnEngineData other;
    other.setRootData(recordOf({{2, columnOf({{2, whole(7)}})},
                                {1, columnOf({{0, whole(7)}, {1, Owned()}, {2, whole(7)}})},
                                {-26, x},
                                {5, x}})
                          .release());
    other.setNumMulti(2);
    record.appendMultiData(&other);
    expectRecord(
        record, {{1, columnOf({{1, whole(1)}, {2, whole(7)}})}, {2, columnOf({{4, whole(7)}})}, {-26, x}}, 5);
    record.appendMultiData(&record);
    EXPECT_EQ(record.getMultiData(1, 7, nullptr), 0);
    EXPECT_EQ(record.getNumMulti(), 10);
}

}  // namespace
