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

constexpr char textFiles[] =
#include "tests/engine/text_files.txt"
    ;

TEST(RecordFilesTest, TextFilesMeetWhatTheRecordHolds) {
    const TemporaryFolder folder;
    std::istringstream lines(textFiles);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t first = line.find(" -> "), second = line.find(" -> ", first + 1);
        if (line.empty() || line[0] == '#') continue;
        std::string content;
        for (const char c : line.substr(first + 4, second - first - 4)) {
            content += c == '@' ? example
                                : std::string(1, c == '~'   ? '\r'
                                                 : c == '!' ? '\n'
                                                 : c == '%' ? '\0'
                                                            : c);
        }
        fill(folder.file("a.txt"), content);
        const std::vector<std::string> head = tarntest::split(line.substr(0, first), ' ');
        const eLoadType mode = head[0] == "append"   ? loadAppend
                               : head[0] == "insert" ? loadInsert
                                                     : loadReplace;
        tarnEngineData record;
        if (head[1] != "-") fillRecord(record, std::stoi(head[1]));
        EXPECT_EQ(std::to_string(record.loadData(folder.file("a.txt").c_str(), mode)), head[2]) << line;
        std::string outcome = shown(record);
        std::replace(outcome.begin(), outcome.end(), '\n', '!');
        EXPECT_EQ(outcome, line.substr(second + 4));
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
