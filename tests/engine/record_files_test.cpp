// Files of the record: engine/text_file.cpp, engine/indexed_file.cpp, engine/record_loader.cpp.

#include "tests/engine/records.h"

namespace {

using namespace tarntest;

struct RecordFilesTest : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string name = folder.file("a.dat");
    tarnEngineData record;

    // A field 1, and so many rows in column 7.
    void fillRecord(std::int32_t rows) {
        const Owned old = text("old");
        record.storeData(1, &old);
        for (std::int32_t row = 0; row < rows; ++row) {
            const Owned cell = whole(row);
            record.storeMultiData(7, row, &cell, 1);
        }
    }
    void expectLoaded(const std::string& content, eLoadType mode, int answer, const Owned& left,
                      std::int32_t rows) {
        fill(name, content);
        EXPECT_EQ(record.loadData(name.c_str(), mode), answer) << content;
        EXPECT_EQ(left, contentOf(record)) << content;
        EXPECT_EQ(record.numMulti, rows) << content;
    }
};

TEST_F(RecordFilesTest, ATextFileIsReadAsFarAsItIsInOrder) {
    const std::string example = "#2^101|15|ABC^102|3|25^#0|2^7|5|1^8|15|X^7|5|2^8|15|Y^";
    const Element abc = text("ABC"), letter = number(tagChar, 'A'), x = rowsOf({text("X")}),
                  y = columnOf({{1, text("Y")}});
    const Owned oneRow = rowsOf({real(1)}), twoRows = rowsOf({real(1), real(2)});
    const Keyed all = {{101, abc}, {102, whole(25)}, {7, twoRows}, {8, rowsOf({text("X"), text("Y")})}};
    const struct {
        std::string content;
        int answer;
        Keyed left;
        std::int32_t rows;
    } cases[] = {
        {example, 1, all, 2},
        // More rows than stated; fewer, a column that recurs in a row and a field that is open at the end; an
        // id that recurs and a code without a text form.
        {"#0^#0|1^7|5|1^7|5|2^", 1, {{7, oneRow}}, 1},
        {"#0^#0|3^7|5|1^8|15|b^8|15|X^7|5|2^70|15|Y^7|5|3", 1, {{7, twoRows}, {8, x}, {70, y}}, 2},
        {"#4^5|12|A^6|21|5^7|99|x^6|21|4^#0|0^",
         1,
         {{5, letter}, {6, number(tagNumber, 4)}, {7, Owned()}},
         0},
        // No header, no second one, one without a divider, a cell without a value.
        {"", 0, {}, 0},
        {"x" + example, 0, {}, 0},
        {"#1^101|15|ABC^", 0, {{101, abc}}, 0},
        {"#1^101|15|ABC^0|1^", 0, {{101, abc}}, 0},
        {"#0^#1^", 0, {}, 0},
        {"#0^#0|2^7|5|1^7|5^", 0, {{7, oneRow}}, 1},
    };
    for (const auto& each : cases) {
        fillRecord(1);
        expectLoaded(each.content, loadReplace, each.answer, recordOf(each.left), each.rows);
    }
}

TEST_F(RecordFilesTest, ATextFileMeetsWhatTheRecordHolds) {
    const std::string content = "#2^x^1|3^#0|2^7|3|5^8|3|6^7|3|7^";  // whose fields aren't looked at then
    const Element old = text("old"), six = whole(6);
    const Owned appended = rowsOf({whole(0), whole(1), whole(5), whole(7)});
    const Owned inserted = rowsOf({whole(5), whole(7), whole(0), whole(1), whole(5), whole(7)});
    fillRecord(2);
    expectLoaded(content, loadAppend, 1, recordOf({{1, old}, {7, appended}, {8, columnOf({{2, six}})}}), 4);
    expectLoaded(content, loadInsert, 1,
                 recordOf({{1, old}, {7, inserted}, {8, columnOf({{0, six}, {3, six}})}}), 6);
}

// Inserting cell after cell is another way to the same record, also where columns have gaps and recur in a
// row.
TEST_F(RecordFilesTest, InsertedRowsEndWhereInsertingOneByOneEnds) {
    std::mt19937 random(9);
    const auto below = [&](unsigned limit) { return static_cast<std::int32_t>(random() % limit); };
    for (int round = 0; round < 300; ++round) {
        record.removeMultiData();
        for (std::int32_t i = 0; i < 6; ++i) {
            const Owned cell = whole(i);
            const std::int32_t id = below(3);
            record.storeMultiData(id, below(8), &cell, 1);
        }
        tarnEngineData expected(&record);
        const std::int32_t rows = below(5);
        std::string content = "#0^#0|" + std::to_string(rows) + "^";
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::int32_t further = below(4), id = 9; further >= 0; --further, id = below(4)) {
                const Owned cell = whole(below(1000));
                content += std::to_string(id) + "|3|" + std::to_string(cell.payload.longValue) + "^";
                expected.insertMultiData(id, row, &cell);
            }
        }
        expectLoaded(content, loadInsert, 1, Owned(&contentOf(expected)), expected.numMulti);
        ASSERT_FALSE(HasFailure());
    }
}

// A file of 80 MiB is longer than what is held in memory; 1,100 times 4 MiB are more than a reader takes.
TEST_F(RecordFilesTest, ALongFileIsWrittenWholeOrNotAtAll) {
    const std::string bytes(std::size_t{4} << 20, 'x');
    const Owned large = blob(bytes), small = text("the last one");
    tarnEngineData loaded;
    for (std::int32_t row = 0; row < 20; ++row) record.storeMultiData(7, row, &large, 1);
    record.storeMultiData(8, 19, &small, 1);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    ASSERT_EQ(loaded.loadData(name.c_str(), loadReplace), 1);
    MOLTVARIANT out;
    for (std::int32_t row = 0; row < 20; ++row) {
        ASSERT_EQ(loaded.getMultiData(7, row, &out), 0);
        const auto& blob = out.payload.blob;
        ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), blob.data, blob.data + blob.length)) << row;
    }
    loaded.getMultiData(8, 19, &out);
    EXPECT_EQ(small, out);
    fill(name, "old");
    nodeList* const column = record.fields->values->getAt(0)->payload.multi->nodes;
    for (std::int32_t row = 20; row < 1100; ++row) {
        record.storeMultiData(7, row, nullptr, 1);
        *column->cells[row]->value = large;
    }
    EXPECT_EQ(record.saveData(name.c_str()), 0);
    EXPECT_EQ(contentOf(name), "old");
    for (std::int32_t row = 20; row < 1100; ++row) column->cells[row]->value->initContent(nullptr);
}

// Single cells in 3,000 columns of 100,001 rows are 4.8 GB of empty values, more than a reader takes.
TEST_F(RecordFilesTest, AFileThatNobodyCouldReadIsNotWritten) {
    const Owned one = whole(1);
    for (std::int32_t id = 0; id < 3000; ++id) record.storeMultiData(id, 0, &one, 1);
    record.setNumMulti(100'001);
    fill(name, "old");
    EXPECT_EQ(record.saveData(name.c_str()), 0);
    EXPECT_EQ(contentOf(name), "old");
    record.setNumMulti(-1);
    EXPECT_EQ(record.saveData(name.c_str()), 1);
    EXPECT_EQ(contentOf(name).size(), 13U + 3000 * 16);
}

// Empty cells leave gaps, a column without any other cell isn't made, a list has no form in a file.  Of an id
// that is there twice, in a record that a client built by hand, the last value takes the first one's place.
TEST_F(RecordFilesTest, ASavedRecordLoadsEqualWithItsGaps) {
    const Owned list = listOf({});
    tarnEngineData loaded;
    record.fields->add(5, text("first").release());
    record.fields->add(6, nullptr);
    fillRecord(4);
    record.fields->add(5, text("last").release());
    record.removeMultiData(7, 1);
    record.storeMultiData(5, 3, nullptr, 0);
    record.storeMultiData(8, 0, &list, 0);
    record.storeData(-5, &list);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    ASSERT_EQ(loaded.loadData(name.c_str(), loadAppend), 1);
    const Owned rows = columnOf({{0, whole(0)}, {2, whole(2)}, {3, whole(3)}});
    expectRecord(loaded, {{5, text("last")}, {1, text("old")}, {-5, Owned()}, {7, rows}}, 4);
}

TEST_F(RecordFilesTest, WhatCantBeReadOrWrittenAnswersZero) {
    const std::string here = folder.path().string(), missing = folder.file("missing");
    fillRecord(1);
    const Owned before(&contentOf(record));
    for (const char* file : {missing.c_str(), here.c_str(), static_cast<const char*>(nullptr)})
        EXPECT_EQ(record.loadData(file, loadReplace), 0);
    EXPECT_EQ(record.saveData(here.c_str()), 0);
    EXPECT_EQ(record.saveData(nullptr), 0);
    fill(name, "@");  // a file of the indexed form that holds nothing
    EXPECT_EQ(record.loadData(name.c_str(), loadAppend), 1);
    EXPECT_EQ(before, contentOf(record));
    EXPECT_EQ(record.loadData(name.c_str(), loadReplace), 1);
    EXPECT_EQ(recordOf({}), contentOf(record));
}

}  // namespace
