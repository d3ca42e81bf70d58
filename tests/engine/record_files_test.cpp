// Files of the record: engine/text_file.cpp, engine/indexed_file.cpp, engine/record_loader.cpp.

#include <ctime>

#include "tests/engine/records.h"

namespace {

using namespace tarntest;

// A field 1, and so many rows in column 7.
void fillRecord(tarnEngineData& record, std::int32_t rows) {
    const Owned old = text("old");
    record.storeData(1, &old);
    for (std::int32_t row = 0; row < rows; ++row) {
        const Owned cell = whole(row);
        record.storeMultiData(7, row, &cell, 1);
    }
}

struct RecordFilesTest : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string name = folder.file("a.dat");

    // Loads a text into a record that holds a field 1 and so many rows in column 7, or is empty.
    void expectLoaded(eLoadType mode, std::int32_t rowsBefore, const std::string& content, int answer,
                      const Keyed& left, std::int32_t rows) {
        tarnEngineData record;
        if (rowsBefore > 0) fillRecord(record, rowsBefore);
        fill(name, content);
        EXPECT_EQ(record.loadData(name.c_str(), mode), answer) << content;
        EXPECT_EQ(recordOf(left), contentOf(record)) << content;
        EXPECT_EQ(record.numMulti, rows) << content;
    }
};

TEST_F(RecordFilesTest, ATextFileMeetsWhatTheRecordHolds) {
    const std::string example = "#2^101|15|ABC^102|3|25^#0|2^7|5|1.5^8|15|X^7|5|2.5^8|15|Y^";
    const Element old = text("old"), zero = whole(0), one = whole(1), first = real(1.5), second = real(2.5);
    const Owned texts = rowsOf({text("X"), text("Y")}), lower = columnOf({{2, text("X")}, {3, text("Y")}});
    const Owned alone = columnOf({{0, first}, {1, second}}), before = columnOf({{0, zero}});
    const Owned appended = columnOf({{0, zero}, {1, one}, {2, first}, {3, second}});
    const Owned inserted = columnOf({{0, first}, {1, second}, {2, zero}, {3, one}});
    const Keyed all = {{101, text("ABC")}, {102, whole(25)}, {7, alone}, {8, texts}};
    expectLoaded(loadReplace, 2, example, 1, all, 2);
    expectLoaded(loadAppend, 0, example, 1, all, 2);
    expectLoaded(loadAppend, 0, "^^" + example + "^^", 1, all, 2);
    expectLoaded(loadAppend, 0, example + "\r\n", 1, all, 2);
    expectLoaded(loadAppend, 2, example, 1, {{1, old}, {7, appended}, {8, lower}}, 4);
    expectLoaded(loadInsert, 2, example, 1, {{1, old}, {7, inserted}, {8, texts}}, 4);
    expectLoaded(loadAppend, 1, "#2^x^1|3^#0|1^8|3|1^", 1, {{1, old}, {7, before}, {8, columnOf({{1, one}})}},
                 2);
    expectLoaded(loadAppend, 1, "#9^", 0, {{1, old}, {7, before}}, 1);
    expectLoaded(loadAppend, 1, "x" + example, 0, {{1, old}, {7, before}}, 1);
    expectLoaded(loadAppend, 1, "", 0, {{1, old}, {7, before}}, 1);
    expectLoaded(loadReplace, 2, "x" + example, 0, {}, 0);
}

TEST_F(RecordFilesTest, ATextFileIsReadAsFarAsItIsInOrder) {
    const Element abc = text("ABC"), x = rowsOf({text("X")}), y = columnOf({{1, text("Y")}});
    const Owned oneRow = rowsOf({real(1)}), twoRows = rowsOf({real(1), real(2)});
    const struct {
        std::string content;
        int answer;
        Keyed left;
        std::int32_t rows;
    } cases[] = {
        // Rows: an open field at the end, more and fewer than stated, a column that recurs in a row.
        {"#0^#0|2^7|5|1^8|15|X^7|5|2^8|15|Y", 1, {{7, twoRows}, {8, x}}, 2},
        {"#0^#0|2147483647^7|5|1^", 1, {{7, oneRow}}, 1},
        {"#0^#0|1^7|5|1^7|5|2^", 1, {{7, oneRow}}, 1},
        {"#0^#0|2^7|5|1^8|15|b^8|15|X^7|5|2^70|15|Y^", 1, {{7, twoRows}, {8, x}, {70, y}}, 2},
        // Fields: every type code, a divider in a text, a code without a text form, an id that recurs.
        {"#1^1|2|70000^#0|0^", 1, {{1, number(tagShort, 4464)}}, 0},
        {"#2^2|3|9x^4|5|-2^#0|0^", 1, {{2, whole(9)}, {4, real(-2)}}, 0},
        {"#2^3|4|1.5^5|12|Az^#0|0^", 1, {{3, number(tagFloat, 1.5)}, {5, number(tagChar, 'A')}}, 0},
        {"#2^101|15|a|b\n|^8||^#0|0^", 1, {{101, text("a|b\n|")}, {8, Owned()}}, 0},
        {"#3^6|21|5^7|99|x^6|21|4^#0|0^", 1, {{6, number(tagNumber, 4)}, {7, Owned()}}, 0},
        // Out of order: fields that are missing, no second header, one without a divider, no value, a NUL.
        {"#3^101|15|ABC^#0|1^7|5|1^", 0, {{101, abc}}, 0},
        {"#1^101|15|ABC^", 0, {{101, abc}}, 0},
        {"#1^101|15|ABC^0|1^", 0, {{101, abc}}, 0},
        {"#0^#1^", 0, {}, 0},
        {"#0^#0|2^7|5|1^7|5^", 0, {{7, oneRow}}, 1},
        {std::string("#1^101|15|ABC\0D^#0|0^", 22), 0, {{101, abc}}, 0},
    };
    for (const auto& each : cases)
        expectLoaded(loadReplace, 1, each.content, each.answer, each.left, each.rows);
}

// Inserting cell after cell is another way to the same record, also where columns have gaps and recur in a
// row.
TEST_F(RecordFilesTest, InsertedRowsEndWhereInsertingOneByOneEnds) {
    std::mt19937 random(9);
    const auto below = [&](unsigned limit) { return static_cast<std::int32_t>(random() % limit); };
    for (int round = 0; round < 300; ++round) {
        tarnEngineData record;
        for (std::int32_t i = 0; i < 6; ++i) {
            const Owned cell = whole(i);
            const std::int32_t id = below(3);
            record.storeMultiData(id, below(8), &cell, 1);
        }
        tarnEngineData expected(&record);
        const std::int32_t rows = below(5);
        std::string content = "#0^#0|" + std::to_string(rows) + "^";
        for (std::int32_t row = 0; row < rows; ++row) {
            const std::int32_t further = below(4);
            for (std::int32_t field = 0; field <= further; ++field) {
                const std::int32_t id = field == 0 ? 9 : below(4);
                const Owned cell = whole(below(1000));
                content += std::to_string(id) + "|3|" + std::to_string(cell.payload.longValue) + "^";
                expected.insertMultiData(id, row, &cell);
            }
        }
        fill(name, content);
        ASSERT_EQ(record.loadData(name.c_str(), loadInsert), 1);
        ASSERT_EQ(Owned(&contentOf(expected)), contentOf(record)) << content;
        ASSERT_EQ(record.numMulti, expected.numMulti) << content;
    }
}

// A file of 80 MiB is longer than what is held in memory; 1,100 times 4 MiB are more than a reader takes.
TEST_F(RecordFilesTest, ALongFileIsWrittenWholeOrNotAtAll) {
    const std::string bytes(std::size_t{4} << 20, 'x');
    const Owned large = blob(bytes), small = text("the last one");
    tarnEngineData record, loaded;
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

// In processor time, compared with a load that stores each cell over the one before.
TEST_F(RecordFilesTest, AColumnThatRecursInARowTakesNoLongerToInsert) {
    constexpr std::int32_t cells = 20'000;
    std::string content = "#0^#1|1^1|3|1^";
    for (std::int32_t i = 0; i < cells; ++i) content += "2|3|" + std::to_string(i) + "^";
    fill(name, content);
    const auto timeOf = [&](tarnEngineData& record, eLoadType mode) {
        const std::clock_t start = std::clock();
        EXPECT_EQ(record.loadData(name.c_str(), mode), 1);
        return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    };
    tarnEngineData replaced, inserted;
    const double plain = timeOf(replaced, loadReplace);
    EXPECT_LT(timeOf(inserted, loadInsert), 100 * std::max(plain, 0.001));
    MOLTVARIANT out;
    EXPECT_EQ(inserted.numMulti, cells);
    EXPECT_EQ(inserted.getMultiData(2, 0, &out), 1);
    EXPECT_EQ(whole(cells - 1), out);
    EXPECT_EQ(inserted.getMultiData(2, cells - 1, &out), 1);
    EXPECT_EQ(whole(0), out);
}

// Single cells in 3,000 columns of 100,001 rows are 4.8 GB of empty values, more than a reader takes.
TEST_F(RecordFilesTest, AFileThatNobodyCouldReadIsNotWritten) {
    const Owned one = whole(1);
    tarnEngineData record;
    for (std::int32_t id = 0; id < 3000; ++id) record.storeMultiData(id, 0, &one, 1);
    record.setNumMulti(100'001);
    fill(name, "old");
    EXPECT_EQ(record.saveData(name.c_str()), 0);
    EXPECT_EQ(contentOf(name), "old");
    record.setNumMulti(-1);
    EXPECT_EQ(record.saveData(name.c_str()), 1);
    EXPECT_EQ(contentOf(name).size(), 13U + 3000 * 16);
}

// Empty cells leave gaps, a column without any other cell isn't made, a list has no form in a file.
TEST_F(RecordFilesTest, ASavedRecordLoadsEqualWithItsGaps) {
    const Owned list = listOf({});
    const Element old = text("old"), empty = Owned(), zero = whole(0), two = whole(2), three = whole(3);
    tarnEngineData record, loaded;
    fillRecord(record, 4);
    record.removeMultiData(7, 1);
    record.storeMultiData(1, 3, nullptr, 0);
    record.storeMultiData(8, 0, &list, 0);
    record.storeData(-5, &list);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    const Keyed once = {{0, zero}, {2, two}, {3, three}};
    ASSERT_EQ(loaded.loadData(name.c_str(), loadAppend), 1);
    expectRecord(loaded, {{1, old}, {-5, empty}, {7, columnOf(once)}}, 4);
    const Keyed twice = {{0, zero}, {2, two}, {3, three}, {4, zero}, {6, two}, {7, three}};
    ASSERT_EQ(loaded.loadData(name.c_str(), loadAppend), 1);
    expectRecord(loaded, {{1, old}, {-5, empty}, {7, columnOf(twice)}}, 8);
    // Rows 0, 2 and 3 are inserted, where the file has cells.
    const Keyed inserted = {{0, zero},  {1, zero}, {2, two}, {3, three}, {5, two},
                            {6, three}, {7, zero}, {9, two}, {10, three}};
    ASSERT_EQ(loaded.loadData(name.c_str(), loadInsert), 1);
    expectRecord(loaded, {{1, old}, {-5, empty}, {7, columnOf(inserted)}}, 11);
}

TEST_F(RecordFilesTest, WhatCantBeReadOrWrittenAnswersZero) {
    const std::string here = folder.path().string();
    tarnEngineData record;
    fillRecord(record, 1);
    const Owned before(&contentOf(record));
    EXPECT_EQ(record.loadData(folder.file("missing").c_str(), loadReplace), 0);
    EXPECT_EQ(record.loadData(here.c_str(), loadReplace), 0);
    EXPECT_EQ(record.loadData(nullptr, loadReplace), 0);
    EXPECT_EQ(record.saveData(here.c_str()), 0);
    EXPECT_EQ(record.saveData(nullptr), 0);
    EXPECT_EQ(before, contentOf(record));
    fill(name, "@");  // a file of the indexed form that holds nothing
    EXPECT_EQ(record.loadData(name.c_str(), loadAppend), 1);
    EXPECT_EQ(before, contentOf(record));
    EXPECT_EQ(record.loadData(name.c_str(), loadReplace), 1);
    EXPECT_EQ(recordOf({}), contentOf(record));
}

// A record that a client built by hand has one id twice: the last value takes the first one's place.
TEST_F(RecordFilesTest, AnIdThatIsThereTwiceIsSavedOnce) {
    tarnEngineData record, loaded;
    const Owned cell = whole(2);
    record.fields->add(5, text("first").release());
    record.fields->add(6, nullptr);
    record.fields->add(7, whole(7).release());
    record.fields->add(5, text("last").release());
    record.storeMultiData(5, 1, &cell, 0);
    EXPECT_EQ(record.saveData(name.c_str()), 1);
    EXPECT_EQ(loaded.loadData(name.c_str(), loadReplace), 1);
    EXPECT_EQ(recordOf({{5, text("last")}, {7, whole(7)}, {5, columnOf({{1, cell}})}}), contentOf(loaded));
}

}  // namespace
