// Files of the record: engine/text_file.cpp, engine/indexed_file.cpp, engine/record_loader.cpp.

#include "tests/engine/shown.h"

namespace {

using namespace tarntest;

constexpr const char* example = "#2^101|15|ABC^102|3|25^#0|2^7|5|1.5^8|15|X^7|5|2.5^8|15|Y^";

// A record with a field 1 and `rows` rows in column 7.
void fillRecord(tarnEngineData& record, std::int32_t rows) {
    const Owned value = valueOf("10:old");
    record.storeData(1, &value);
    for (std::int32_t row = 0; row < rows; ++row) storeLong(record, 7, row, row, 1);
}

constexpr char textFiles[] =
#include "tests/engine/text_files.txt"
    ;

TEST(RecordFilesTest, TextFilesMeetWhatTheRecordHolds) {
    const TemporaryFolder folder(inMemory);
    std::istringstream lines(textFiles);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t first = line.find(" -> "), second = line.find(" -> ", first + 1);
        if (line.empty() || line[0] == '#') continue;
        std::string content;
        for (const char c : line.substr(first + 4, second - first - 4)) {
            const std::size_t sign = std::string_view("~!%").find(c);
            content += c == '@' ? example : std::string(1, sign < 3 ? "\r\n"[sign] : c);
        }
        fill(folder.file("a.txt"), content);
        const auto head = split(line.substr(0, first), ' ');
        const auto mode = static_cast<eLoadType>(std::string_view("air").find(head[0][0]));
        tarnEngineData record;
        if (head[1] != "-") fillRecord(record, std::stoi(head[1]));
        EXPECT_EQ(std::to_string(record.loadData(folder.file("a.txt").c_str(), mode)), head[2]) << line;
        EXPECT_EQ(split(shown(record), '\n'), split(line.substr(second + 4), '!'));
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
            const auto id = static_cast<std::int32_t>(random() % 3);
            storeLong(record, id, static_cast<std::int32_t>(random() % 8), i, 1);
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
        ASSERT_EQ(shown(record), shown(expected)) << content;
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
    const Owned list = valueOf("20:[]");
    record.removeMultiData(7, 1);
    record.storeMultiData(1, 3, nullptr, 0);
    record.storeMultiData(8, 0, &list, 0);
    record.storeData(-5, &list);
    ASSERT_EQ(record.saveData(name.c_str()), 1);
    // Empty cells leave gaps, a column without any other cell isn't made, a list has no form in a file.  The
    // inserted rows are 0, 2 and 3, where the file has cells.
    tarnEngineData loaded;
    for (const auto& [mode, outcome] :
         {std::pair(loadAppend, "1=10:old,-5=0:0,7=21:[0=3:0,2=3:2,3=3:3] 4"),
          std::pair(loadAppend, "1=10:old,-5=0:0,7=21:[0=3:0,2=3:2,3=3:3,4=3:0,6=3:2,7=3:3] 8"),
          std::pair(loadInsert,
                    "1=10:old,-5=0:0,7=21:[0=3:0,1=3:0,2=3:2,3=3:3,5=3:2,6=3:3,7=3:0,9=3:2,10=3:3] 11")}) {
        ASSERT_EQ(loaded.loadData(name.c_str(), mode), 1);
        EXPECT_EQ(shown(loaded), outcome);
    }
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
    for (const auto& [mode, left] : {std::pair(loadAppend, "1=10:old,7=21:[0=3:0] 1"), {loadReplace, " 0"}}) {
        EXPECT_EQ(record.loadData(mark.c_str(), mode), 1);
        EXPECT_EQ(shown(record), left);
    }
}

// A record that a client built by hand with one id twice: the last value stands at the first one's place.
TEST(RecordFilesTest, AnIdThatStandsTwiceIsSavedOnce) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    tarnEngineData record, loaded;
    for (const char* value : {"10:first", "10:last"}) record.fields->add(5, valueOf(value).release());
    record.fields->add(6, nullptr);
    storeLong(record, 5, 1, 2);
    EXPECT_EQ(record.saveData(name.c_str()) + loaded.loadData(name.c_str(), loadReplace), 2);
    EXPECT_EQ(shown(loaded), "5=10:last,5=21:[1=3:2] 2");
}

}  // namespace
