// Keyed records and their file: store/index_data_file.cpp, store/index_file_writer.cpp,
// store/index_file_reader.cpp.

#include "store/index_data_file.h"

#include "store/index_file_writer.h"
#include "tests/values.h"

namespace {

using namespace tarntest;
using namespace std::string_literals;

// --------------------------------------------------------------------------- a file's bytes, piece by piece

std::string word(std::uint32_t number) {
    std::string bytes(4, '\0');
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>(number >> (8 * i));
    return bytes;
}
std::string header(std::uint32_t size, std::uint32_t version, std::uint32_t records) {
    return "@" + word(size) + word(version) + word(records);
}
std::string record(std::uint32_t id, std::uint32_t type, std::uint32_t repeats, std::uint32_t offset = 0) {
    return word(id) + word(type) + word(repeats) + word(offset);
}
// The front of a value with a payload of so many bytes.
std::string prefix(std::uint32_t tag, std::uint32_t size) {
    return word(tag) + word(size);
}
std::string value(std::uint32_t tag, const std::string& payload) {
    return prefix(tag, static_cast<std::uint32_t>(payload.size())) + payload;
}
std::string longValue(std::uint32_t number) {
    return value(tagLong, word(number));
}
std::string vectorFront(std::uint32_t count) {
    return value(tagVector, "") + word(count);
}
const std::string emptyValue = value(tagEmpty, std::string(8, '\0'));

// ----------------------------------------------------------------------------- a set's records

struct Held {
    std::int32_t id, type, repeats;
    std::vector<Owned> values;  // those that are looked at
};

// The set has these records, and no other of type 0 or 1.
void expectRecords(tarnIndexDataFile& set, const std::vector<Held>& expected) {
    const std::int32_t count = set.getNumberIndexRecords(0) + set.getNumberIndexRecords(1);
    EXPECT_EQ(static_cast<std::size_t>(count), expected.size());
    for (const Held& each : expected) {
        EXPECT_EQ(set.checkIndexRecord(each.id, each.type), 1);
        EXPECT_EQ(set.getNumberRepeats(each.id, each.type), each.repeats);
        for (std::size_t i = 0; i < each.values.size(); ++i) {
            MOLTVARIANT* stored = nullptr;
            set.getDataRecord(each.id, each.type, static_cast<std::int32_t>(i), &stored);
            EXPECT_EQ(readable(stored), readable(&each.values[i]));
        }
    }
}

struct IndexDataFileTest : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string name = folder.file("a.dat");
    tarnIndexDataFile file, loaded;

    void add(std::int32_t id, std::int32_t type, const Owned& stored) {
        file.addIndexRecord(id, type, 1);
        EXPECT_EQ(file.addDataRecord(id, type, 0, &stored), 1);
    }
    std::string savedBytes() {
        EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
        return contentOf(name);
    }
    void load(const std::string& bytes) {
        fill(name, bytes);
        EXPECT_EQ(loaded.readIndexDataFile(name.c_str()), 1);
    }
    // Loads the data of two records of one value.
    void expectTwoValues(const std::string& data, const Owned& first, const Owned& second) {
        load(header(12, 1, 2) + record(1, 0, 1) + record(2, 0, 1) + data);
        expectRecords(loaded, {{1, 0, 1, {first}}, {2, 0, 1, {second}}});
    }
};

TEST_F(IndexDataFileTest, RecordsKeepTheirFirstRepeatsAndOnlyGrow) {
    file.addIndexRecord(1, 0, 2);
    file.addIndexRecord(1, 0, 9);
    file.addIndexRecord(1, 1, -4);
    for (const std::int32_t repeat : {-1, 1, 2}) EXPECT_EQ(file.addDataRecord(1, 0, repeat, "x"), 1);
    expectRecords(file, {{1, 0, 2, {Owned(), text("x")}}, {1, 1, -4, {}}});
    EXPECT_EQ(file.updateIndexRecord(1, 0, 1), 1);
    EXPECT_EQ(file.updateIndexRecord(1, 0, 3), 1);
    EXPECT_EQ(file.updateIndexRecord(1, 1, 1), 1);
    EXPECT_EQ(file.addDataRecord(1, 0, 2, "y"), 1);
    expectRecords(file, {{1, 0, 3, {Owned(), text("x"), text("y")}}, {1, 1, 1, {Owned()}}});
    EXPECT_EQ(file.updateIndexRecord(2, 0, 2), 0);
    EXPECT_EQ(file.addDataRecord(7, 0, 0, "x"), 0);
    EXPECT_EQ(file.getNumberIndexRecords(0), 1);
}

TEST_F(IndexDataFileTest, ValuesAreCopiedInAndTextsOut) {
    file.addIndexRecord(1, 0, 2);
    const auto expectText = [&](std::int32_t repeat, const char* expected) {
        char untouched = 0, *out = &untouched;
        EXPECT_EQ(file.getDataRecord(1, 0, repeat, &out), 1);
        EXPECT_STREQ(std::unique_ptr<char[]>(out).get(), expected);
    };
    expectText(0, "0");  // a place that was never filled reads as a number
    expectText(2, nullptr);
    file.addDataRecord(1, 0, 0, static_cast<const char*>(nullptr));
    expectText(0, "");

    const Owned list = listOf({text("inner")});
    MOLTVARIANT marker, *stored = nullptr;
    file.addDataRecord(1, 0, 0, &list);
    file.getDataRecord(1, 0, 0, &stored);
    file.addDataRecord(1, 0, 0, stored->payload.list->getAt(0));  // a part of the value that it replaces
    expectRecords(file, {{1, 0, 2, {text("inner"), Owned()}}});
    stored = &marker;
    EXPECT_EQ(file.getDataRecord(9, 0, 0, &stored), 0);
    EXPECT_EQ(stored, &marker);
    EXPECT_EQ(file.getDataRecord(1, 0, 2, &stored), 1);
    EXPECT_EQ(stored, nullptr);
}

TEST_F(IndexDataFileTest, EveryFormHasItsBytes) {
    EXPECT_EQ(savedBytes(), header(12, 1, 0));
    add(0, 1, text("abc"));
    file.addIndexRecord(1, 1, 1);
    add(2, 1, vectorOf({number(tagDouble, 1), text("ab")}));
    add(3, 1, blob("12345"));
    add(4, 1, number(tagLong, 42));
    file.addIndexRecord(5, 1, 0);
    add(6, 1, wideText(u"w"));
    // Offsets leave out the prefixes of a vector's elements.
    EXPECT_EQ(savedBytes(),
              header(12, 1, 7) + record(0, 1, 1, 0) + record(1, 1, 1, 12) + record(2, 1, 1, 28) +
                  record(3, 1, 1, 51) + record(4, 1, 1, 68) + record(5, 1, 0, 80) + record(6, 1, 1, 80) +
                  value(tagText, "abc\0"s) + emptyValue + prefix(tagVector, 11) + word(2) +
                  value(tagDouble, word(0) + word(0x3FF00000)) + value(tagText, "ab\0"s) +
                  prefix(tagBlob, 9) + word(5) + "12345" + longValue(42) + value(tagWideText, "w\0\0\0"s));
    // More than is written in one piece, behind what waits to be written.
    const std::string longText(70'000, 'x');
    tarnIndexDataFile larger;
    larger.addIndexRecord(0, 0, 2);
    larger.addDataRecord(0, 0, 0, "abc");
    larger.addDataRecord(0, 0, 1, longText.c_str());
    EXPECT_EQ(larger.writeIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(contentOf(name), header(12, 1, 1) + record(0, 0, 2) + value(tagText, "abc\0"s) +
                                   value(tagText, longText + "\0"s));
    EXPECT_EQ(file.writeIndexDataFile(folder.path().string().c_str()), 0);
    EXPECT_EQ(file.writeIndexDataFile(nullptr), 0);
}

// A blob's length is read before its bytes, which aren't there.
TEST_F(IndexDataFileTest, AFileThatNobodyCouldReadIsNotWritten) {
    fill(name, "old");
    add(1, 0, blob("x"));
    add(2, 0, blob("x"));
    MOLTVARIANT *first = nullptr, *second = nullptr;
    file.getDataRecord(1, 0, 0, &first);
    file.getDataRecord(2, 0, 0, &second);
    first->payload.blob.length = second->payload.blob.length = INT32_MAX;
    EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 0);
    EXPECT_EQ(contentOf(name), "old");
    first->payload.blob.length = second->payload.blob.length = 1;
    EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
}

// One record of each form, read back as the format says, and then every truncation and flipped byte of it.
TEST_F(IndexDataFileTest, EveryFormReadsBackAndItsDamageIsSafe) {
    Owned block = nothing(tagBlock);
    block.payload.block = new unsigned char[16]();
    const Owned same[] = {number(tagShort, -2),
                          number(tagFloat, 1.5),
                          number(tagDouble, -1e300),
                          number(tagUShort, 65535),
                          number(tagByte, 200),
                          number(tagNumber, 7),
                          number(9, 9),
                          text(""),
                          text(nullptr),
                          text("abc", tagString),
                          wideText(u"wide"),
                          blob("a b"),
                          vectorOf({text("a"), vectorOf({}), number(tagLong, 1)})};
    const std::pair<Owned, Owned> changed[] = {{text(nullptr, tagString), text("", tagString)},
                                               {nothing(tagVector), vectorOf({})},
                                               {block, Owned()},
                                               {listOf({}), Owned()},
                                               {columnOf({}), Owned()},
                                               {recordOf({}), Owned()}};
    std::vector<Held> expected;
    tarn::IndexFileMeasure measure(std::size(same) + std::size(changed));
    const auto addForm = [&](const Owned& saved, const Owned& read) {
        const auto id = static_cast<std::int32_t>(expected.size());
        file.addIndexRecord(id, id % 2, 2);
        file.addDataRecord(id, id % 2, 1, &saved);
        measure.writeEmptyValues(1);
        measure.writeValue(&saved);
        expected.push_back({id, id % 2, 2, {Owned(), read}});
    };
    for (const Owned& form : same) addForm(form, form);
    for (const auto& [saved, read] : changed) addForm(saved, read);
    const std::string good = savedBytes();
    EXPECT_EQ(measure.length(), good.size());
    load(good);
    expectRecords(loaded, expected);
    ASSERT_EQ(loaded.writeIndexDataFile(name.c_str()), 1);
    EXPECT_EQ(loaded.readIndexDataFile(name.c_str()), 1);
    expectRecords(loaded, expected);
    for (std::size_t i = 0; i < good.size(); ++i) {
        load(good.substr(0, i));
        for (const unsigned flip : {0x01U, 0x80U}) {
            std::string damaged = good;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ flip);
            load(damaged);
        }
    }
}

TEST_F(IndexDataFileTest, AFileHoldsLessThanItPromises) {
    const Owned four = number(tagLong, 4);
    const std::string fourHeld = longValue(4), one = record(7, 0, 1);
    const struct {
        std::string bytes;
        std::vector<Held> records;
    } cases[] = {
        {"", {}},
        {"@", {}},
        {"x" + header(12, 1, 1).substr(1) + one + fourHeld, {}},
        {header(12, 1, 1) + one.substr(0, 15), {}},
        {header(12, 1, 1) + one, {{7, 0, 1, {Owned()}}}},
        // Headers: a count that they leave out, a word more, an end behind the file, another version.
        {header(8, 1, 1) + one + fourHeld, {}},
        {header(16, 1, 1) + word(99) + one + fourHeld, {{7, 0, 1, {four}}}},
        {header(0xFFFFFFFF, 1, 1) + one, {}},
        {header(12, 1, 0xFFFFFFFF) + one, {}},
        {header(12, 77, 1) + one + fourHeld, {{7, 0, 1, {four}}}},
        // A pair of keys that is there twice counts once.
        {header(12, 1, 3) + record(1, 0, 1) + record(2, 0, 1) + record(1, 0, 5) + longValue(1) + fourHeld,
         {{1, 0, 1, {number(tagLong, 1)}}, {2, 0, 1, {four}}}},
        // A million values more than the file can hold, in all, vectors included.
        {header(12, 1, 2) + record(1, 0, 0x7FFFFFFF) + record(2, 1, 5) + fourHeld,
         {{1, 0, 1'000'001, {four, Owned(), Owned()}}, {2, 1, 0, {}}}},
        {header(12, 1, 1) + record(1, 0, 1'000'003) + vectorFront(1) + fourHeld + fourHeld,
         {{1, 0, 1'000'003, {vectorOf({four}), four, Owned()}}}},
        {header(12, 1, 1) + record(1, 0, 1'000'004) + vectorFront(1) + fourHeld + fourHeld,
         {{1, 0, 1'000'004, {Owned(), Owned(), Owned()}}}},
        {header(12, 1, 1) + record(1, 0, 1'000'003) + vectorFront(1) + vectorFront(1) + fourHeld,
         {{1, 0, 1'000'003, {Owned(), Owned(), Owned()}}}},
    };
    for (const auto& each : cases) {
        loaded.addIndexRecord(1, 0, 1);  // gone with the next load
        load(each.bytes);
        expectRecords(loaded, each.records);
    }
    EXPECT_EQ(loaded.readIndexDataFile(folder.file("missing").c_str()), 0);
    expectRecords(loaded, {});
    EXPECT_EQ(loaded.readIndexDataFile(nullptr), 0);
}

TEST_F(IndexDataFileTest, AValueThatIsNotWholeReadsAsEmpty) {
    const Owned empty, four = number(tagLong, 4), five = number(tagLong, 5);
    const std::string fourHeld = longValue(4), fiveHeld = longValue(5), x(40, 'x');
    const Owned eight = eightBytes(9, "\1\0\0\0\2\0\0\0"s), unknown = eightBytes(77, "\1");
    const struct {
        std::string data;
        Owned first, second;
    } cases[] = {
        {fourHeld + fiveHeld, four, five},
        {word(tagLong) + word(4), empty, empty},
        {fourHeld + prefix(tagLong, 4), four, empty},
        {prefix(tagText, 100) + "abc", empty, empty},
        {prefix(tagText, 0xFFFFFFFF) + fourHeld, empty, empty},
        {value(tagText, x + "\0"s), text(x.c_str()), empty},
        {value(tagText, x) + fourHeld, text(x.c_str()), four},  // not terminated
        {value(tagString, "ab") + fourHeld, text("ab", tagString), four},
        {value(tagWideText, "a\0b"s) + fourHeld, wideText(u"a"), four},
        {prefix(tagBlob, 4) + word(3) + "abc" + fourHeld, blob("abc"), four},
        {prefix(tagBlob, 4) + word(4) + "abc", empty, empty},
        {prefix(tagBlob, 4) + word(0xFFFFFFFF) + fourHeld, empty, empty},
        {value(9, word(1) + word(2) + word(3)) + fourHeld, eight, four},  // no more than a payload is kept
        {value(tagList, word(1) + word(2)) + fourHeld, empty, four},
        {value(77, word(1)) + fourHeld, unknown, four},
        {vectorFront(2) + fourHeld, empty, empty},
        {vectorFront(2) + fourHeld + fiveHeld, vectorOf({four, five}), empty},
    };
    for (const auto& each : cases) expectTwoValues(each.data, each.first, each.second);
}

TEST_F(IndexDataFileTest, AVectorTooDeepIsPassedOver) {
    const Owned empty, four = number(tagLong, 4);
    const std::string fourHeld = longValue(4), blobHeld = prefix(tagBlob, 4) + word(3) + "abc";
    const auto fronts = [](int depth) {
        std::string bytes;
        for (int i = 0; i < depth; ++i) bytes += vectorFront(1);
        return bytes;
    };
    const auto nested = [](Owned innermost) {
        for (int i = 0; i < 64; ++i) innermost = vectorOf({innermost});
        return innermost;
    };
    expectTwoValues(fronts(64) + fourHeld + fourHeld, nested(four), four);
    for (const int depth : {65, 100'000}) {
        const std::string bytes = fronts(depth);
        expectTwoValues(bytes + fourHeld + fourHeld, nested(empty), four);
        expectTwoValues(bytes + vectorFront(2) + blobHeld + fourHeld + fourHeld, nested(empty), four);
        for (const std::string& cut :
             {""s, word(tagLong), prefix(tagLong, 4) + "123", prefix(tagBlob, 4) + word(4) + "abc"})
            expectTwoValues(bytes + cut, empty, empty);
    }
}

}  // namespace
