// Keyed records and their file: store/index_data_file.cpp, store/index_file_writer.cpp,
// store/index_file_reader.cpp.

#include "store/index_data_file.h"

#include <array>
#include <memory>
#include <vector>

#include "tests/support.h"
#include "tests/values.h"

namespace {

using tarntest::contentOf;
using tarntest::describe;
using tarntest::fill;
using tarntest::number;
using tarntest::Owned;
using tarntest::TemporaryFolder;
using tarntest::text;

std::string words(std::initializer_list<std::uint32_t> numbers) {
    std::string bytes;
    for (const std::uint32_t n : numbers) {
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(n >> shift);
    }
    return bytes;
}

// A file of these index records (keys and repeats, without offsets) and data.
std::string fileOf(const std::vector<std::array<std::uint32_t, 3>>& index, const std::string& data) {
    std::string bytes = "@" + words({12, 1, static_cast<std::uint32_t>(index.size())});
    for (const auto& [id, type, repeats] : index) bytes += words({id, type, repeats, 0});
    return bytes + data;
}

std::string describeValue(tarnIndexDataFile& file, std::int32_t id, std::int32_t type, std::int32_t repeat) {
    MOLTVARIANT* value = nullptr;
    file.getDataRecord(id, type, repeat, &value);
    return describe(value);
}

const MOLTVARIANT empty;

TEST(IndexDataFileTest, RecordsKeepTheirFirstRepeatsAndOnlyGrow) {
    tarnIndexDataFile file;
    for (const std::int32_t repeats : {3, 9}) file.addIndexRecord(1, 0, repeats);
    file.addIndexRecord(1, 1, -4);
    EXPECT_EQ(file.updateIndexRecord(1, 0, 2), 1);
    EXPECT_EQ(file.updateIndexRecord(2, 0, 2), 0);
    EXPECT_EQ(file.getNumberRepeats(1, 0), 3);
    EXPECT_EQ(file.getNumberRepeats(1, 1), -4);
    EXPECT_EQ(file.getNumberRepeats(2, 0), 0);
    EXPECT_EQ(file.addDataRecord(1, 0, 3, "x"), 1);
    EXPECT_EQ(describeValue(file, 1, 0, 3), "NULL");
    EXPECT_EQ(describeValue(file, 1, 0, 2), describe(&empty));
    EXPECT_EQ(file.updateIndexRecord(1, 0, 4), 1);
    EXPECT_EQ(file.addDataRecord(1, 0, 3, "x"), 1);
    EXPECT_EQ(describeValue(file, 1, 0, 3), "10:x");
    EXPECT_EQ(file.addDataRecord(7, 0, 0, "x"), 0);
    EXPECT_EQ(file.getNumberIndexRecords(0), 1);
    EXPECT_EQ(file.checkIndexRecord(1, 1) - file.checkIndexRecord(1, 2), 1);
}

TEST(IndexDataFileTest, ValuesAreCopiedInAndTextsOut) {
    tarnIndexDataFile file;
    file.addIndexRecord(1, 0, 2);
    char* out = nullptr;
    EXPECT_EQ(file.getDataRecord(1, 0, 0, &out), 1);
    EXPECT_STREQ(std::unique_ptr<char[]>(out).get(), "0");  // never filled
    EXPECT_EQ(file.getDataRecord(1, 0, 2, &out), 1);
    EXPECT_EQ(out, nullptr);
    file.addDataRecord(1, 0, 0, static_cast<const char*>(nullptr));
    EXPECT_EQ(describeValue(file, 1, 0, 0), "10:");
    const Owned list = tarntest::listOf(text("inner"));
    file.addDataRecord(1, 0, 0, &list);
    MOLTVARIANT* stored = nullptr;
    file.getDataRecord(1, 0, 0, &stored);
    file.addDataRecord(1, 0, 0, stored->payload.list->getAt(0));  // a part of the value that it replaces
    EXPECT_EQ(describeValue(file, 1, 0, 0), "10:inner");
    MOLTVARIANT marker;
    stored = &marker;
    EXPECT_EQ(file.getDataRecord(9, 0, 0, &stored), 0);
    EXPECT_EQ(stored, &marker);
}

TEST(IndexDataFileTest, TheBytesAreThoseOfTheWorkedExample) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    tarnIndexDataFile file;
    EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(contentOf(name), "@" + words({12, 1, 0}));
    file.addIndexRecord(7, 0, 2);
    const Owned fortyTwo = number(tagLong, 42);
    file.addDataRecord(7, 0, 0, &fortyTwo);
    file.addDataRecord(7, 0, 1, "abc");
    EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(contentOf(name), fileOf({{7, 0, 2}}, words({3, 4, 42, 10, 4}) + std::string("abc\0", 4)));
    EXPECT_EQ(file.writeIndexDataFile(folder.path().string().c_str()), 0);
    EXPECT_EQ(file.writeIndexDataFile(nullptr), 0);
}

TEST(IndexDataFileTest, OffsetsCountAVectorsElementsWithoutTheirPrefixes) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    tarnIndexDataFile file;
    const Owned vector = tarntest::vectorOf(number(tagDouble, 1), text("ab"));
    const Owned values[] = {text("abc"), Owned(), Owned(&vector), tarntest::blob("12345")};
    for (std::int32_t i = 0; i < 4; ++i) {
        file.addIndexRecord(i, 0, 1);
        file.addDataRecord(i, 0, 0, &values[i]);
    }
    file.addIndexRecord(4, 0, 0);
    file.addIndexRecord(5, 0, 0);
    EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
    const std::string bytes = contentOf(name);
    const std::uint32_t offsets[] = {0, 12, 28, 28 + 12 + 8 + 3, 51 + 8 + 4 + 5, 68};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(bytes.substr(13 + 16 * i + 12, 4), words({offsets[i]})) << i;
}

// One record of each form, read back as the format says.
TEST(IndexDataFileTest, EveryFormReadsBackAndSavesToTheSameBytes) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    Owned noVector;
    noVector.tag = tagVector;
    Owned pointer;
    pointer.payload.block = new unsigned char[16];
    pointer.tag = tagBlock;
    const Owned values[] = {number(tagShort, -2),
                            number(tagFloat, 1.5),
                            number(tagDouble, -1e300),
                            number(tagUShort, 65535),
                            number(tagByte, 200),
                            number(tagNumber, 7),
                            number(tagPlain9, 9),
                            text(""),
                            text(nullptr),
                            text("abc", tagString),
                            tarntest::wideText(u"wide"),
                            tarntest::vectorOf(text("a"), tarntest::vectorOf(), number(tagLong, 1)),
                            tarntest::blob(std::string_view("a\0b", 3)),
                            text(nullptr, tagString),
                            std::move(noVector),
                            std::move(pointer),
                            tarntest::listOf()};
    constexpr std::int32_t changed = 13;  // from here on a value comes back in another form
    const std::string forms[] = {"17:", "13:.", describe(&empty), describe(&empty)};
    tarnIndexDataFile file;
    for (std::int32_t i = 0; i < 17; ++i) {
        file.addIndexRecord(i, i % 2, 2);
        file.addDataRecord(i, i % 2, 1, &values[i]);
    }
    ASSERT_EQ(file.writeIndexDataFile(name.c_str()), 1);
    tarnIndexDataFile loaded;
    ASSERT_EQ(loaded.readIndexDataFile(name.c_str()), 1);
    for (std::int32_t i = 0; i < 17; ++i) {
        EXPECT_EQ(describeValue(loaded, i, i % 2, 1), i < changed ? describe(&values[i]) : forms[i - changed])
            << i;
        EXPECT_EQ(describeValue(loaded, i, i % 2, 0), describe(&empty));
    }
    ASSERT_EQ(loaded.writeIndexDataFile(folder.file("b.dat").c_str()), 1);
    tarnIndexDataFile again;
    ASSERT_EQ(again.readIndexDataFile(folder.file("b.dat").c_str()), 1);
    ASSERT_EQ(again.writeIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(contentOf(name), contentOf(folder.file("b.dat")));
}

TEST(IndexDataFileTest, FilesOfAnotherKindReadAsEmpty) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    const std::string one = fileOf({{7, 0, 1}}, words({3, 4, 42}));
    const struct {
        std::string bytes;
        std::int32_t records;
    } rows[] = {{"", 0},
                {"@", 0},
                {"#1^", 0},
                {one, 1},
                {"x" + one.substr(1), 0},
                {one.substr(0, 28), 0},
                {"@" + words({8, 1, 1}) + one.substr(13), 0},       // a count that the header leaves out
                {"@" + words({16, 1, 1, 99}) + one.substr(13), 1},  // a larger header
                {"@" + words({0xFFFFFFFF, 1, 1}) + one.substr(13), 0},
                {"@" + words({12, 1, 0xFFFFFFFF}) + one.substr(13), 0},
                {"@" + words({12, 77, 1}) + one.substr(13), 1}};  // no reader tests the version
    tarnIndexDataFile file;
    for (const auto& row : rows) {
        file.addIndexRecord(1, 0, 1);  // gone with the next load
        fill(name, row.bytes);
        EXPECT_EQ(file.readIndexDataFile(name.c_str()), 1);
        EXPECT_EQ(file.getNumberIndexRecords(0), row.records) << row.bytes.size();
    }
    EXPECT_EQ(file.readIndexDataFile(folder.file("missing").c_str()), 0);
    EXPECT_EQ(file.getNumberIndexRecords(0), 0);
    EXPECT_EQ(file.readIndexDataFile(nullptr), 0);
}

TEST(IndexDataFileTest, WhatAFilePromisesAndDoesntHoldReadsAsEmpty) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    const std::string four = words({3, 4, 4});
    const Owned second = number(tagLong, 4);
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += words({13, 0, 1});
    const auto nested = [&](std::size_t depth) { return deep.substr(0, depth * 12) + four; };
    std::string counts;
    for (int i = 0; i < 2000; ++i) counts += words({13, 0, 20'000});
    const struct {
        const char* fault;
        std::string data;
        bool firstIsEmpty, secondIsFour;
    } rows[] = {{"text longer than the file", words({10, 100}) + "abc", true, false},
                {"size of all ones", words({10, 0xFFFFFFFF}) + four, true, false},
                {"text without a terminator", words({10, 3}) + "abc" + four, false, true},
                {"odd wide text", words({11, 3}) + "a" + std::string("\0b", 2) + four, false, true},
                {"blob of all ones", words({15, 4, 0xFFFFFFFF}) + four, true, false},
                {"payload larger than a value", words({5, 12, 1, 2, 3}) + four, false, true},
                {"pointer forms", words({20, 8, 1, 2}) + four, true, true},
                {"unknown tag", words({77, 4, 1}) + four, false, true},
                {"vector of more than the file holds", words({13, 0, 1000}) + four, true, false},
                {"vectors within the limit", nested(64) + four, false, true},
                {"one vector too deep", nested(65) + four, false, true},  // its content is passed over
                {"vectors without end", deep, true, false},
                {"vectors far too deep", nested(100'000) + four, false, true},
                {"nested counts", counts, true, false}};
    tarnIndexDataFile file;
    for (const auto& row : rows) {
        fill(name, fileOf({{1, 0, 1}, {2, 0, 1}, {1, 0, 5}}, row.data));
        EXPECT_EQ(file.readIndexDataFile(name.c_str()), 1);
        EXPECT_EQ(describeValue(file, 1, 0, 0) == describe(&empty), row.firstIsEmpty) << row.fault;
        EXPECT_EQ(describeValue(file, 2, 0, 0) == describe(&second), row.secondIsFour) << row.fault;
        EXPECT_EQ(file.getNumberIndexRecords(0), 2) << row.fault;  // the pair that stands twice counts once
    }
    std::vector<std::array<std::uint32_t, 3>> greedy;
    for (std::uint32_t id = 0; id < 2000; ++id) greedy.push_back({id, 0, 0x7FFFFFFF});
    fill(name, fileOf(greedy, four));
    EXPECT_EQ(file.readIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(file.getNumberRepeats(0, 0), 1'000'001);  // a million more than the file can hold, in all
    EXPECT_EQ(file.getNumberRepeats(1, 0), 0);
}

TEST(IndexDataFileTest, EveryTruncationAndEveryFlippedByteIsSafe) {
    const TemporaryFolder folder;
    const std::string name = folder.file("a.dat");
    const Owned values[] = {text("abc"),
                            tarntest::vectorOf(text("a"), tarntest::vectorOf(number(tagDouble, 2))),
                            tarntest::blob("xyz"), tarntest::wideText(u"w"), text("s", tagString)};
    tarnIndexDataFile file;
    for (std::int32_t i = 0; i < 5; ++i) {
        file.addIndexRecord(i, 0, 1);
        file.addDataRecord(i, 0, 0, &values[i]);
    }
    ASSERT_EQ(file.writeIndexDataFile(name.c_str()), 1);
    const std::string good = contentOf(name);
    for (std::size_t i = 0; i < good.size(); ++i) {
        fill(name, good.substr(0, i));
        EXPECT_EQ(file.readIndexDataFile(name.c_str()), 1);
        for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
            std::string damaged = good;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ flip);
            fill(name, damaged);
            EXPECT_EQ(file.readIndexDataFile(name.c_str()), 1);
            file.writeIndexDataFile(name.c_str());
        }
    }
}

}  // namespace
