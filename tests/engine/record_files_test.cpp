// Files of the record: engine/text_file.cpp, engine/indexed_file.cpp, engine/record_loader.cpp.
// fuzz/text_file_fuzz.cpp and fuzz/indexed_file_fuzz.cpp read both forms in a plain way too.

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

// 17 times 4 MiB are more than is held in memory, 1,100 times more than a reader takes; all are views of one.
TEST_F(RecordFilesTest, ALongFileIsWrittenWholeOrNotAtAll) {
    const Owned large = blob(std::string(std::size_t{4} << 20, 'x'));
    for (std::int32_t row = 0; row < 1100; ++row) record.storeMultiData(7, row, nullptr, 1);
    const nodeList& column = *record.fields->values->getAt(0)->payload.multi->nodes;
    for (std::int32_t row = 0; row < 1100; ++row) column.cells[row]->value->assignContent(&large);
    fill(name, "old");
    EXPECT_EQ(record.saveData(name.c_str()), 0);
    EXPECT_EQ(contentOf(name), "old");
    record.setNumMulti(17);
    EXPECT_EQ(record.saveData(name.c_str()), 1);
    for (std::int32_t row = 0; row < 1100; ++row) column.cells[row]->value->initContent(nullptr);
    ASSERT_EQ(record.loadData(name.c_str(), loadReplace), 1);
    for (std::int32_t row = 0; row < 17; ++row) {
        MOLTVARIANT view;
        ASSERT_EQ(record.getMultiData(7, row, &view), 0);
        EXPECT_EQ(std::memcmp(view.payload.blob.data, large.payload.blob.data, std::size_t{4} << 20), 0);
    }
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
    fillRecord(1);
    const Owned before(&contentOf(record));
    EXPECT_EQ(record.loadData(folder.file("missing").c_str(), loadReplace), 0);
    EXPECT_EQ(record.loadData(nullptr, loadReplace), 0);
    EXPECT_EQ(record.saveData(folder.path().string().c_str()), 0);
    expectLoaded("@", loadAppend, 1, before, 1);  // a file of the indexed form that holds nothing
    expectLoaded("@", loadReplace, 1, recordOf({}), 0);
}

}  // namespace
