// Files of the record: engine/text_file.cpp, engine/indexed_file.cpp, engine/record_loader.cpp.

#include <random>

#include "engine/engine_data.h"
#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::describe;
using tarntest::fill;
using tarntest::number;
using tarntest::Owned;
using tarntest::TemporaryFolder;
using tarntest::text;

constexpr const char* example = "#2^101|15|ABC^102|3|25^#0|2^7|5|1.5^8|15|X^7|5|2.5^8|15|Y^";

std::string described(tarnEngineData& record) {
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        if (record.isMulti(i) != 0) record.fields->values->getAt(i)->payload.multi->nodes->sort();
    }
    return describe(record.getRootData()) + " " + std::to_string(record.getNumMulti());
}

// A record with a field 1 and `rows` rows in column 7.
void fillRecord(tarnEngineData& record, std::int32_t rows) {
    const Owned value = text("old");
    record.storeData(1, &value);
    for (std::int32_t row = 0; row < rows; ++row) {
        const Owned cell = number(tagLong, row);
        record.storeMultiData(7, row, &cell, 1);
    }
}

std::string textOf(const MOLTVARIANT* value) {
    tarnString string;
    string.assign(value);
    return string.text;
}

// What a record holds: "field=value column[row:value,...] rows".
std::string shown(tarnEngineData& record) {
    std::string out;
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        const std::int32_t id = record.getId(i);
        const bool column = record.isMulti(i) != 0;
        out += std::to_string(id) + (column ? "[" : "=" + textOf(record.fields->values->getAt(i)));
        for (std::int32_t row = 0; column && row < record.getNumMulti(); ++row) {
            MOLTVARIANT cell;
            if (record.getMultiData(id, row, &cell) < 0) continue;
            out += std::to_string(row) + ":" + textOf(&cell) + ",";
        }
        out += column ? "] " : " ";
    }
    return out + std::to_string(record.getNumMulti());
}

TEST(RecordFilesTest, TextFilesMeetWhatTheRecordHolds) {
    const std::string one = example;
    constexpr std::int32_t fresh = -1;
    const struct {
        std::string content;
        eLoadType mode;
        std::int32_t rows;
        int result;
        const char* outcome;
    } rows[] = {
        {one, loadReplace, 3, 1, "101=ABC 102=25 7[0:1.5,1:2.5,] 8[0:X,1:Y,] 2"},
        {one, loadAppend, fresh, 1, "101=ABC 102=25 7[0:1.5,1:2.5,] 8[0:X,1:Y,] 2"},
        {one, loadAppend, 3, 1, "1=old 7[0:0,1:1,2:2,3:1.5,4:2.5,] 8[3:X,4:Y,] 5"},
        {one, loadInsert, 3, 1, "1=old 7[0:1.5,1:2.5,2:0,3:1,4:2,] 8[0:X,1:Y,] 5"},
        {one.substr(0, one.size() - 1), loadReplace, fresh, 1, "101=ABC 102=25 7[0:1.5,1:2.5,] 8[0:X,] 2"},
        {one + "\r\n", loadReplace, fresh, 1, "101=ABC 102=25 7[0:1.5,1:2.5,] 8[0:X,1:Y,] 2"},
        {"^^" + one + "^^", loadReplace, fresh, 1, "101=ABC 102=25 7[0:1.5,1:2.5,] 8[0:X,1:Y,] 2"},
        {"#0^#0|9^7|5|1^", loadReplace, fresh, 1, "7[0:1.0,] 1"},
        {"#0^#0|2147483647^", loadReplace, fresh, 1, "0"},
        {"#0^#0|1^7|5|1^7|5|2^", loadReplace, fresh, 1, "7[0:1.0,] 1"},
        {"#0^#0|2^7|15|a^8|15|b^8|15|c^7|15|d^70|15|e^", loadReplace, fresh, 1,
         "7[0:a,1:d,] 8[0:c,] 70[1:e,] 2"},
        {"#0^#0|2^7|15|a^8|15|b^8|15|c^7|15|d^8|15|e^", loadInsert, fresh, 1,
         "7[0:a,1:d,] 8[0:c,1:e,2:b,] 3"},
        {"#1^101|15|a|b\n|^#0|0^", loadReplace, fresh, 1, "101=a|b\n| 0"},
        {"#8^1|2|70000^2|3|9x^3|4|1.5^4|5|-2^5|12|Az^6|21|5^7|99|x^8||^#0|0^", loadReplace, fresh, 1,
         "1=4464 2=9 3=1.5 4=-2.0 5=A 6=5 7= 8= 0"},
        {"#3^101|15|ABC^#0|1^7|5|1^", loadReplace, fresh, 0, "101=ABC 0"},
        {"#1^101|15|ABC^", loadReplace, fresh, 0, "101=ABC 0"},
        {"#1^101|15|ABC^0|1^", loadReplace, fresh, 0, "101=ABC 0"},
        {"#0^#1^", loadReplace, fresh, 0, "0"},
        {"#0^#0|2^7|5|1^7|5^", loadReplace, fresh, 0, "7[0:1.0,] 1"},
        {"#0^#0|2^7|5|1^7x", loadInsert, 2, 1, "1=old 7[0:1.0,1:0,2:1,] 3"},
        {"#9^", loadAppend, 1, 0, "1=old 7[0:0,] 1"},
        {"#2147483647", loadAppend, 1, 0, "1=old 7[0:0,] 1"},
        {"x" + one, loadReplace, 2, 0, "0"},
        {"x" + one, loadAppend, 1, 0, "1=old 7[0:0,] 1"},
        {"", loadAppend, 1, 0, "1=old 7[0:0,] 1"},
        {std::string("#1^101|15|A\0^#0|0^", 18), loadReplace, fresh, 0, "101=A 0"},
    };
    const TemporaryFolder folder;
    for (const auto& row : rows) {
        fill(folder.file("a.txt"), row.content);
        tarnEngineData record;
        if (row.rows >= 0) fillRecord(record, row.rows);
        EXPECT_EQ(record.loadData(folder.file("a.txt").c_str(), row.mode), row.result) << row.content;
        EXPECT_EQ(shown(record), row.outcome) << row.content;
    }
}

// loadInsert has to end where inserting cell after cell ends, also where columns have gaps and recur in a
// row.
TEST(RecordFilesTest, InsertedRowsEndWhereInsertingOneByOneEnds) {
    std::mt19937 random(9);
    const TemporaryFolder folder;
    for (int round = 0; round < 300; ++round) {
        tarnEngineData record;
        for (int i = 0; i < 6; ++i) {
            const Owned cell = number(tagLong, i);
            record.storeMultiData(static_cast<std::int32_t>(random() % 3),
                                  static_cast<std::int32_t>(random() % 8), &cell, 1);
        }
        tarnEngineData expected(&record);
        const auto rows = static_cast<std::int32_t>(random() % 5);
        std::string content = "#0^#0|" + std::to_string(rows) + "^";
        for (std::int32_t row = 0; row < rows; ++row) {
            for (std::uint32_t field = 0; field <= random() % 4; ++field) {
                const std::int32_t id = field == 0 ? 9 : static_cast<std::int32_t>(random() % 4);
                const auto value = static_cast<std::int32_t>(random() % 1000);
                content += std::to_string(id) + "|3|" + std::to_string(value) + "^";
                const Owned cell = number(tagLong, value);
                expected.insertMultiData(id, row, &cell);
            }
        }
        fill(folder.file("a.txt"), content);
        ASSERT_EQ(record.loadData(folder.file("a.txt").c_str(), loadInsert), 1);
        ASSERT_EQ(described(record), described(expected)) << content;
    }
}

TEST(RecordFilesTest, ASavedRecordLoadsEqualWithItsGaps) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    tarnEngineData record;
    EXPECT_EQ(record.saveData(name.c_str()), 1);
    EXPECT_EQ(record.loadData(name.c_str(), loadReplace), 1);
    EXPECT_EQ(record.isEmpty(), 1);
    fillRecord(record, 4);
    const Owned list = tarntest::listOf();
    record.removeMultiData(7, 1);
    record.storeMultiData(1, 3, nullptr, 0);
    record.storeMultiData(8, 0, &list, 0);
    record.storeData(-5, &list);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    // Empty cells leave gaps, a column without any other cell isn't made, a list has no form in a file.  The
    // inserted rows are 0, 2 and 3, where the file has cells.
    tarnEngineData loaded;
    for (const auto& [mode, outcome] :
         {std::pair(loadAppend, "1=old -5= 7[0:0,2:2,3:3,] 4"),
          std::pair(loadAppend, "1=old -5= 7[0:0,2:2,3:3,4:0,6:2,7:3,] 8"),
          std::pair(loadInsert, "1=old -5= 7[0:0,1:0,2:2,3:3,5:2,6:3,7:0,9:2,10:3,] 11")}) {
        ASSERT_EQ(loaded.loadData(name.c_str(), mode), 1);
        EXPECT_EQ(shown(loaded), outcome);
    }
    MOLTVARIANT out;
    EXPECT_EQ(loaded.getData(-5, &out), 1);
    EXPECT_EQ(out.tag, tagEmpty);
}

TEST(RecordFilesTest, WhatCantBeReadOrWrittenAnswersZero) {
    const TemporaryFolder folder;
    const std::string here = folder.path().string(), missing = folder.file("missing"),
                      mark = folder.file("a.dat");
    tarnEngineData record;
    fillRecord(record, 1);
    for (const char* name : {missing.c_str(), here.c_str(), static_cast<const char*>(nullptr)})
        EXPECT_EQ(record.loadData(name, loadReplace), 0);
    EXPECT_EQ(record.saveData(here.c_str()) + record.saveData(nullptr), 0);
    fill(mark, "@");
    EXPECT_EQ(record.loadData(mark.c_str(), loadAppend), 1);
    EXPECT_EQ(record.getNumMulti(), 1);  // nothing was emptied
    EXPECT_EQ(record.loadData(mark.c_str(), loadReplace), 1);
    EXPECT_EQ(record.isEmpty(), 1);
}

// A record that a client built by hand with one id twice: the last value stands at the first one's place.
TEST(RecordFilesTest, AnIdThatStandsTwiceIsSavedOnce) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    tarnEngineData record;
    for (const char* value : {"first", "last"}) record.fields->add(5, text(value).release());
    record.fields->add(6, nullptr);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    tarnEngineData loaded;
    loaded.loadData(name.c_str(), loadReplace);
    EXPECT_EQ(described(loaded), "22:5=10:last;. 0");
}

}  // namespace
