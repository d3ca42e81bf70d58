// Columns of rows: engine/multi_data.cpp and engine/column.cpp.

#include <map>

#include "tests/engine/shown.h"

namespace {

using namespace tarntest;

constexpr std::int32_t noValue = -1;

using Column = std::map<std::int32_t, std::int32_t>;  // rows with numbers as values

void shift(Column& column, std::int32_t from, std::int32_t by) {
    Column shifted;
    for (const auto& [row, value] : column) shifted[row >= from ? row + by : row] = value;
    column = shifted;
}

// What a row was taken from, noValue for a gap; the rows behind it close up.
std::int32_t taken(Column& column, std::int32_t row) {
    const std::int32_t value = column.contains(row) ? column[row] : noValue;
    column.erase(row);
    shift(column, row, -1);
    return value;
}

void put(Column& column, std::int32_t row, std::int32_t value) {
    shift(column, row, 1);
    column[row] = value;
}

TEST(MultiDataTest, RandomWorkMatchesAModel) {
    std::mt19937 random(8);
    const auto below = [&](unsigned limit) { return static_cast<std::int32_t>(random() % limit); };
    for (int round = 0; round < 30; ++round) {
        tarnEngineData record;
        std::map<std::int32_t, Column> model;
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
                put(model[id], row, step);
                rows = std::max(rows, model[id].rbegin()->first + 1);
            } else if (work == 4) {
                record.removeMultiData(id, row);
                if (model.contains(id)) model[id].erase(row);
            } else if (work == 5 && rows != 0) {
                record.removeMultiData(row);
                for (auto& [key, column] : model) taken(column, row);
                --rows;
            } else if (work > 5) {
                record.moveMultiData(row, other);
                for (auto& [key, column] : model) put(column, other, taken(column, row));
            }
            ASSERT_EQ(record.getNumMulti(), rows);
            for (const auto& [key, column] : model) {
                for (std::int32_t r = 0; r < rows + 3; ++r) {
                    MOLTVARIANT out;
                    const bool found = record.getMultiData(key, r, &out) >= 0;
                    const auto cell = column.find(r);
                    ASSERT_EQ(found, cell != column.end() && cell->second != noValue);
                    ASSERT_EQ(out.payload.longValue, found ? cell->second : 0);
                }
            }
        }
    }
}

TEST(MultiDataTest, PositionsAreNotRowsWhileASortIsPending) {
    tarnEngineData record;
    const Owned ten = number(tagLong, 10), sameNumber = number(tagNumber, 10);
    storeLong(record, 7, 5, 5, 1), storeLong(record, 7, 1, 10, 1);
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
    for (const std::int32_t value : {1, 2}) storeLong(record, 7, 4, value, 1);
    for (const char* left : {"7[4:1,4:2,] 5", "7[4:2,] 5"}) {
        MOLTVARIANT out;
        record.getMultiData(7, 4, &out);
        EXPECT_EQ(out.payload.longValue, left[4] - '0');
        EXPECT_EQ(shown(record), left);
        record.removeMultiData(7, 4);
    }
}

TEST(MultiDataTest, ACellTakesAViewOfItselfAndNullIsAnEmptyCell) {
    tarnEngineData record;
    MOLTVARIANT out;
    storeLong(record, 7, 0, 5);
    const Owned value = valueOf("10:abc");
    record.storeMultiData(7, 0, &value, 0);
    record.getMultiData(7, 0, &out);
    record.storeMultiData(7, 0, &out, 0);
    record.getMultiData(7, 0, &out);
    record.insertMultiData(7, 0, &out);
    record.storeMultiData(7, 2, nullptr, 0);
    EXPECT_EQ(shown(record), "7[0:abc,1:abc,2:,] 3");
    EXPECT_TRUE(record.getMultiData(7, 2, &out) == 0 && out.tag == tagEmpty);
}

TEST(MultiDataTest, RowsNumberOnesThatDontExistChangeOnlyTheCount) {
    tarnEngineData record;
    record.removeMultiData(0);
    EXPECT_EQ(record.getNumMulti(), -1);
    record.setNumMulti(7);
    record.removeMultiData(3, 3);
    EXPECT_EQ(shown(record), "7");
    storeLong(record, 1, INT32_MAX, 1);  // the number of rows wraps, and then the row does
    EXPECT_EQ(shown(record), "1[2147483647:1,] -2147483648");
    const Owned value = number(tagLong, 2);
    record.insertMultiData(1, 5, &value);
    EXPECT_EQ(shown(record), "1[-2147483648:1,5:2,] 6");
}

TEST(MultiDataTest, AppendedRowsKeepTheirDistanceAndBringFieldMinus26) {
    tarnEngineData record, other;
    for (const std::int32_t row : {0, 1}) storeLong(record, 1, row, row);
    storeLong(other, 2, 2, 7), storeLong(other, 1, 0, 8);
    other.storeMultiData(1, 1, nullptr, 0);  // an empty cell doesn't travel
    const Owned value = valueOf("10:x");
    for (const std::int32_t id : {-26, 5}) other.storeData(id, &value);
    record.appendMultiData(&other);
    EXPECT_EQ(shown(record), "1[0:0,1:1,2:8,] 2[4:7,] -26=x 5");
    other.removeData(-26);
    storeLong(other, 1, 2, 9), other.setNumMulti(1);  // as many cells of each column as there are rows
    record.appendMultiData(&other);
    EXPECT_EQ(shown(record), "1[0:0,1:1,2:8,5:8,] 2[4:7,7:7,] -26= 8");
    record.appendMultiData(&record);
    EXPECT_EQ(shown(record), "1[0:0,1:1,2:8,5:8,8:0,9:1,10:8,13:8,] 2[4:7,7:7,12:7,15:7,] -26= 16");
}

}  // namespace
