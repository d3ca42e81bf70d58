// Columns of rows: engine/multi_data.cpp and engine/column.cpp.

#include <algorithm>
#include <random>
#include <vector>

#include "engine/engine_data.h"
#include "tests/plain/column.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::number;
using tarntest::Owned;

TEST(MultiDataTest, RandomWorkMatchesAModel) {
    std::mt19937 random(8);
    const auto below = [&](unsigned limit) { return static_cast<std::int32_t>(random() % limit); };
    for (int round = 0; round < 30; ++round) {
        tarnEngineData record;
        std::map<std::int32_t, tarnplain::Column<std::int32_t>> model;
        std::int32_t rows = 0;
        for (std::int32_t step = 0; step < 300; ++step) {
            const std::int32_t id = below(3), other = below(12), work = below(8);
            const std::int32_t row = work == 2 ? rows : below(12);
            const Owned value = number(tagLong, step);
            if (work < 2 || (work == 2 && !model[id].contains(row))) {
                record.storeMultiData(id, row, &value, work == 2);
                model[id][row] = step;
                rows = std::max(rows, row + 1);
            } else if (work == 3) {
                record.insertMultiData(id, row, &value);
                tarnplain::put(model[id], row, std::optional(step));
                rows = std::max(rows, model[id].rbegin()->first + 1);
            } else if (work == 4) {
                record.removeMultiData(id, row);
                if (model.contains(id)) model[id].erase(row);
            } else if (work == 5 && rows != 0) {
                record.removeMultiData(row);
                for (auto& [key, column] : model) tarnplain::taken(column, row);
                --rows;
            } else if (work > 5) {
                record.moveMultiData(row, other);
                for (auto& [key, column] : model)
                    tarnplain::put(column, other, tarnplain::taken(column, row));
            }
            ASSERT_EQ(record.getNumMulti(), rows);
            for (const auto& [key, column] : model) {
                for (std::int32_t r = 0; r < rows + 3; ++r) {
                    MOLTVARIANT out;
                    const bool found = record.getMultiData(key, r, &out) >= 0;
                    const auto cell = column.find(r);
                    ASSERT_EQ(found, cell != column.end() && cell->second.has_value());
                    ASSERT_EQ(out.payload.longValue, found ? *cell->second : 0);
                }
            }
        }
    }
}

TEST(MultiDataTest, PositionsAreNotRowsWhileASortIsPending) {
    tarnEngineData record;
    const Owned ten = number(tagLong, 10), sameNumber = number(tagNumber, 10), five = number(tagLong, 5);
    record.storeMultiData(7, 5, &five, 1);
    record.storeMultiData(7, 1, &ten, 1);
    EXPECT_EQ(record.findMultiData(7, &ten), 1);
    MOLTVARIANT out;
    EXPECT_EQ(record.getMultiData(7, 5, &out), 0);  // the column's index, not the row
    EXPECT_EQ(record.findMultiData(7, &ten), 0);
    EXPECT_EQ(record.findMultiData(7, nullptr), -1);
    EXPECT_EQ(record.findMultiData(8, &ten), -1);
    EXPECT_EQ(record.findMultiData(7, &sameNumber), -1);
}

TEST(MultiDataTest, ARowThatStandsTwiceReadsAsTheOneStoredFirst) {
    tarnEngineData record;
    for (const std::int32_t i : {1, 2}) {
        const Owned value = number(tagLong, i);
        record.storeMultiData(7, 4, &value, 1);
    }
    for (const std::int32_t i : {1, 2}) {
        MOLTVARIANT out;
        record.getMultiData(7, 4, &out);
        EXPECT_EQ(out.payload.longValue, i);
        record.removeMultiData(7, 4);
    }
}

TEST(MultiDataTest, ACellTakesAViewOfItselfAndNullIsAnEmptyCell) {
    tarnEngineData record;
    const Owned value = tarntest::text("abc");
    record.storeMultiData(7, 0, &value, 0);
    MOLTVARIANT out;
    record.getMultiData(7, 0, &out);
    record.storeMultiData(7, 0, &out, 0);
    record.getMultiData(7, 0, &out);
    record.insertMultiData(7, 0, &out);
    record.getMultiData(7, 1, &out);
    EXPECT_STREQ(out.payload.text, "abc");
    record.storeMultiData(7, 1, nullptr, 0);
    EXPECT_EQ(record.getMultiData(7, 1, &out), 0);
    EXPECT_EQ(out.tag, tagEmpty);
}

TEST(MultiDataTest, RowsNumberOnesThatDontExistChangeOnlyTheCount) {
    tarnEngineData record;
    record.removeMultiData(0);
    EXPECT_EQ(record.getNumMulti(), -1);
    record.setNumMulti(7);
    record.removeMultiData(3, 3);
    EXPECT_EQ(record.getNumMulti(), 7);
    const Owned value = number(tagLong, 1);
    record.storeMultiData(1, INT32_MAX, &value, 0);
    EXPECT_EQ(record.getNumMulti(), INT32_MIN);  // it wraps
    record.insertMultiData(1, 5, &value);
    MOLTVARIANT out;
    EXPECT_EQ(record.getMultiData(1, INT32_MIN, &out), 0);
}

TEST(MultiDataTest, AppendedRowsKeepTheirDistanceAndBringFieldMinus26) {
    tarnEngineData record, other;
    const Owned value = number(tagLong, 1);
    for (const std::int32_t row : {0, 1}) record.storeMultiData(1, row, &value, 0);
    other.storeMultiData(2, 2, &value, 0);
    other.storeMultiData(1, 0, &value, 0);
    other.storeMultiData(1, 1, nullptr, 0);  // an empty cell doesn't travel
    for (const std::int32_t id : {-26, 5}) other.storeData(id, &value);
    record.appendMultiData(&other);
    MOLTVARIANT out;
    EXPECT_EQ(record.getNumMulti(), 5);
    EXPECT_EQ(record.getMultiData(2, 4, &out), 1);
    EXPECT_EQ(record.getMultiData(1, 2, &out), 0);
    EXPECT_EQ(record.getMultiData(1, 3, &out), -1);
    EXPECT_EQ(record.getData(5, &out), -1);
    EXPECT_EQ(record.getData(-26, &out), 2);
    EXPECT_EQ(out.tag, tagLong);
    other.removeData(-26);
    record.appendMultiData(&other);
    EXPECT_EQ(record.getData(-26, &out), 2);  // overwritten by an empty value
    EXPECT_EQ(out.tag, tagEmpty);
    record.appendMultiData(&record);
    EXPECT_EQ(record.getMultiData(2, 12, &out), 1);
}

}  // namespace
