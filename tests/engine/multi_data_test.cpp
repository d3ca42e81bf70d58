// Columns of rows: engine/multi_data.cpp and engine/column.cpp.

#include "tests/engine/shown.h"
#include "tests/plain/column.h"

namespace {

using namespace tarntest;

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

// A record after a list of steps: what is done, a field and a row or two rows, a value.
void work(tarnEngineData& record, const std::string& list) {
    for (const std::string& step : split(list, ',')) {
        std::istringstream words(step);
        std::string done, notation;
        std::int32_t a = 0, b = 0;
        words >> done >> a >> b >> notation;
        const Owned value = valueOf(notation);
        const MOLTVARIANT* const given = notation.empty() ? nullptr : &value;
        if (done == "store" || done == "add") record.storeMultiData(a, b, given, done == "add" ? 1 : 0);
        if (done == "field") record.storeData(a, given);
        if (done == "insert") record.insertMultiData(a, b, given);
        if (done == "remove") record.removeMultiData(a, b);
        if (done == "cut") record.removeMultiData(a);
        if (done == "rows") record.setNumMulti(a);
        if (done == "append") record.appendMultiData(&record);
    }
}

constexpr char steps[] =
#include "tests/engine/steps.txt"
    ;

TEST(MultiDataTest, StepsEndOtherwise) {
    expectAnswers(steps, [](const std::string& kind, const std::vector<std::string>& cells) {
        tarnEngineData record, other;
        work(record, cells[0]);
        work(other, kind == "append" ? cells[1] : "");
        if (kind == "append") record.appendMultiData(&other);
        return shown(record);
    });
}

TEST(MultiDataTest, ACellTakesAViewOfItself) {
    tarnEngineData record;
    MOLTVARIANT out;
    work(record, "store 7 0 3:5,store 7 0 10:abc,store 7 1");
    EXPECT_TRUE(record.getMultiData(7, 1, &out) == 0 && out.tag == tagEmpty);
    record.getMultiData(7, 0, &out);
    record.storeMultiData(7, 0, &out, 0);
    record.getMultiData(7, 0, &out);
    record.insertMultiData(7, 0, &out);
    EXPECT_EQ(shown(record), "7=21:[0=10:abc,1=10:abc,2=0:0] 3");
}

}  // namespace
