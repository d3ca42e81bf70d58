// Columns of rows: engine/multi_data.cpp and engine/column.cpp.

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "engine/engine_data.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::number;
using tarntest::Owned;

constexpr std::int32_t noValue = -1;

// The columns as they are told: rows with numbers as values, and the number of rows.
struct Model {
    std::map<std::int32_t, std::map<std::int32_t, std::int32_t>> columns;
    std::int32_t rows = 0;

    static void shift(std::map<std::int32_t, std::int32_t>& column, std::int32_t from, std::int32_t by) {
        std::map<std::int32_t, std::int32_t> shifted;
        for (const auto& [row, value] : column) shifted[row >= from ? row + by : row] = value;
        column = shifted;
    }
    void store(std::int32_t id, std::int32_t row, std::int32_t value) {
        columns[id][row] = value;
        rows = std::max(rows, row + 1);
    }
    void insert(std::int32_t id, std::int32_t row, std::int32_t value) {
        shift(columns[id], row, 1);
        columns[id][row] = value;
        rows = std::max(rows, columns[id].rbegin()->first + 1);
    }
    void removeRow(std::int32_t row) {
        for (auto& [id, column] : columns) {
            column.erase(row);
            shift(column, row, -1);
        }
        --rows;
    }
    void move(std::int32_t from, std::int32_t to) {
        for (auto& [id, column] : columns) {
            const std::int32_t value = column.contains(from) ? column[from] : noValue;
            column.erase(from);
            shift(column, from, -1);
            shift(column, to, 1);
            column[to] = value;
        }
    }
};

TEST(MultiDataTest, RandomWorkMatchesAModel) {
    std::mt19937 random(8);
    for (int round = 0; round < 30; ++round) {
        tarnEngineData record;
        Model model;
        for (std::int32_t step = 0; step < 300; ++step) {
            const auto id = static_cast<std::int32_t>(random() % 3);
            const auto row = static_cast<std::int32_t>(random() % 12);
            const auto other = static_cast<std::int32_t>(random() % 12);
            const Owned value = number(tagLong, step);
            switch (random() % 8) {
                case 0:
                case 1:
                    record.storeMultiData(id, row, &value, 0);
                    model.store(id, row, step);
                    break;
                case 2:
                    if (model.columns[id].contains(model.rows)) break;
                    record.storeMultiData(id, model.rows, &value, 1);
                    model.store(id, model.rows, step);
                    break;
                case 3:
                    record.insertMultiData(id, row, &value);
                    model.insert(id, row, step);
                    break;
                case 4:
                    record.removeMultiData(id, row);
                    if (model.columns.contains(id)) model.columns[id].erase(row);
                    break;
                case 5:
                    if (model.rows == 0) break;
                    record.removeMultiData(row);
                    model.removeRow(row);
                    break;
                default:
                    record.moveMultiData(row, other);
                    model.move(row, other);
                    break;
            }
            ASSERT_EQ(record.getNumMulti(), model.rows);
            for (const auto& [column, cells] : model.columns) {
                for (std::int32_t r = 0; r < model.rows + 3; ++r) {
                    MOLTVARIANT out;
                    const bool found = record.getMultiData(column, r, &out) >= 0;
                    const auto cell = cells.find(r);
                    ASSERT_EQ(found, cell != cells.end() && cell->second != noValue);
                    ASSERT_EQ(out.payload.longValue, found ? cell->second : 0);
                }
            }
        }
    }
}

TEST(MultiDataTest, PositionsAreNotRowsWhileASortIsPending) {
    tarnEngineData record;
    for (const std::int32_t row : {5, 1, 3}) {
        const Owned value = number(tagLong, row * 10);
        record.storeMultiData(7, row, &value, 1);
    }
    const Owned ten = number(tagLong, 10);
    EXPECT_EQ(record.findMultiData(7, &ten), 1);
    MOLTVARIANT out;
    EXPECT_EQ(record.getMultiData(7, 3, &out), 0);  // the column's index, not the row
    EXPECT_EQ(record.findMultiData(7, &ten), 0);
    EXPECT_EQ(record.findMultiData(7, nullptr), -1);
    EXPECT_EQ(record.findMultiData(8, &ten), -1);
    const Owned sameNumber = number(tagNumber, 10);
    EXPECT_EQ(record.findMultiData(7, &sameNumber), -1);
}

TEST(MultiDataTest, ARowThatStandsTwiceReadsAsTheOneStoredFirst) {
    tarnEngineData record;
    const Owned first = number(tagLong, 1);
    const Owned second = number(tagLong, 2);
    MOLTVARIANT out;
    record.storeMultiData(7, 4, &first, 1);
    record.storeMultiData(7, 4, &second, 1);
    record.getMultiData(7, 4, &out);
    EXPECT_EQ(out.payload.longValue, 1);
    record.removeMultiData(7, 4);
    record.getMultiData(7, 4, &out);
    EXPECT_EQ(out.payload.longValue, 2);
}

TEST(MultiDataTest, ACellTakesAViewOfItselfAndNullIsAnEmptyCell) {
    tarnEngineData record;
    const Owned value = tarntest::text("abc");
    record.storeMultiData(7, 0, &value, 0);
    MOLTVARIANT out;
    record.getMultiData(7, 0, &out);
    record.storeMultiData(7, 0, &out, 0);
    record.getMultiData(7, 0, &out);
    EXPECT_STREQ(out.payload.text, "abc");
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
    tarnEngineData record;
    tarnEngineData other;
    const Owned value = number(tagLong, 1);
    record.storeMultiData(1, 0, &value, 0);
    record.storeMultiData(1, 1, &value, 0);
    other.storeMultiData(2, 2, &value, 0);
    other.storeMultiData(1, 0, &value, 0);
    other.storeMultiData(1, 1, nullptr, 0);  // an empty cell doesn't travel
    other.storeData(-26, &value);
    other.storeData(5, &value);
    record.appendMultiData(&other);
    MOLTVARIANT out;
    EXPECT_EQ(record.getNumMulti(), 5);
    EXPECT_EQ(record.getMultiData(2, 4, &out), 1);
    EXPECT_EQ(record.getMultiData(1, 2, &out), 0);
    EXPECT_EQ(record.getMultiData(1, 3, &out), -1);
    EXPECT_EQ(record.getData(-26, &out), 2);
    EXPECT_EQ(out.tag, tagLong);
    EXPECT_EQ(record.getData(5, &out), -1);

    other.removeData(-26);
    record.appendMultiData(&other);
    EXPECT_EQ(record.getData(-26, &out), 2);  // overwritten by an empty value
    EXPECT_EQ(out.tag, tagEmpty);
    record.appendMultiData(&record);
    EXPECT_EQ(record.getMultiData(2, 12, &out), 1);
}

}  // namespace
