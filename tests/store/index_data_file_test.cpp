// Keyed records and their file: store/index_data_file.cpp, store/index_file_writer.cpp,
// store/index_file_reader.cpp.

#include "store/index_data_file.h"

#include "store/index_file_writer.h"
#include "tests/plain/index_file.h"
#include "tests/values.h"

namespace {

using namespace tarntest;
using namespace std::string_literals;
using tarnplain::IndexRecord;
using Records = std::vector<IndexRecord>;

// --------------------------------------------------------------------------- a file's bytes, piece by piece

std::string word(std::uint32_t number) {
    std::string bytes(4, '\0');
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>(number >> (8 * i));
    return bytes;
}
std::string header(std::uint32_t size, std::uint32_t records) {
    return "@" + word(size) + word(1) + word(records);
}
std::string record(std::uint32_t id, std::uint32_t type, std::uint32_t repeats, std::uint32_t offset = 0) {
    return word(id) + word(type) + word(repeats) + word(offset);
}
std::string value(std::uint32_t tag, const std::string& payload) {
    return word(tag) + word(static_cast<std::uint32_t>(payload.size())) + payload;
}

// ----------------------------------------------------------------------------- a set's records

// The set has these records, and behind their values empty ones.
void expectRecords(tarnIndexDataFile& set, const Records& expected) {
    const Owned empty;
    std::int32_t ofTypeOne = 0;
    for (const IndexRecord& each : expected) {
        ofTypeOne += each.type == 1 ? 1 : 0;
        EXPECT_EQ(set.checkIndexRecord(each.id, each.type), 1);
        EXPECT_EQ(set.getNumberRepeats(each.id, each.type), each.repeats);
        for (std::size_t i = 0; i < std::min(each.places(), each.values.size() + 1); ++i) {
            MOLTVARIANT* stored = nullptr;
            set.getDataRecord(each.id, each.type, static_cast<std::int32_t>(i), &stored);
            EXPECT_EQ(readable(stored), readable(i < each.values.size() ? &each.values[i] : &empty));
        }
    }
    EXPECT_EQ(set.getNumberIndexRecords(1), ofTypeOne);
}

struct IndexDataFileTest : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string name = folder.file("a.dat");
    tarnIndexDataFile file, loaded;

    // A record whose last value is the given one.
    void add(std::int32_t id, std::int32_t repeats, const Owned& last) {
        file.addIndexRecord(id, id % 2, repeats);
        EXPECT_EQ(file.addDataRecord(id, id % 2, repeats - 1, &last), 1);
    }
    std::string savedBytes() {
        EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
        return contentOf(name);
    }
    void expectLoaded(const std::string& bytes, const Records& expected) {
        fill(name, bytes);
        EXPECT_EQ(loaded.readIndexDataFile(name.c_str()), 1);
        expectRecords(loaded, expected);
    }
};

TEST_F(IndexDataFileTest, RecordsKeepTheirFirstRepeatsAndOnlyGrow) {
    for (const std::int32_t repeats : {-4, 9}) file.addIndexRecord(1, 1, repeats);
    file.addIndexRecord(1, 0, 2);
    for (const std::int32_t repeat : {-1, 1, 2}) EXPECT_EQ(file.addDataRecord(1, 0, repeat, "x"), 1);
    expectRecords(file, {{1, 0, 2, {Owned(), text("x")}}, {1, 1, -4, {}}});
    EXPECT_EQ(file.updateIndexRecord(1, 0, 1), 1);
    EXPECT_EQ(file.updateIndexRecord(1, 0, 3), 1);
    EXPECT_EQ(file.updateIndexRecord(1, 1, 1), 1);
    EXPECT_EQ(file.updateIndexRecord(2, 0, 2), 0);
    EXPECT_EQ(file.getNumberRepeats(2, 0), 0);
    EXPECT_EQ(file.addDataRecord(7, 0, 0, "x"), 0);
    expectRecords(file, {{1, 0, 3, {Owned(), text("x")}}, {1, 1, 1, {}}});
}

TEST_F(IndexDataFileTest, ValuesAreCopiedInAndTextsOut) {
    const auto textAt = [&](std::int32_t id, std::int32_t repeat) {
        char untouched = 0, *out = &untouched;
        EXPECT_EQ(file.getDataRecord(id, 0, repeat, &out), file.checkIndexRecord(id, 0));
        const std::unique_ptr<char[]> text(out);
        return text == nullptr ? "NULL" : std::string(text.get());
    };
    file.addIndexRecord(1, 0, 1);
    EXPECT_EQ(textAt(1, 0), "0");  // a place that was never filled reads as a number
    EXPECT_EQ(textAt(1, 1), "NULL");
    EXPECT_EQ(textAt(9, 0), "NULL");
    const Owned list = listOf({text("inner")});
    MOLTVARIANT* stored = nullptr;
    file.addDataRecord(1, 0, 0, &list);
    file.getDataRecord(1, 0, 0, &stored);
    file.addDataRecord(1, 0, 0, stored->payload.list->getAt(0));  // a part of the value that it replaces
    EXPECT_EQ(textAt(1, 0), "inner");
}

// Offsets leave out the prefixes of a vector's elements.  The last text is more than is written in one piece,
// behind what waits to be written.
TEST_F(IndexDataFileTest, OffsetsAndLongValuesHaveTheirBytes) {
    const std::string longText(70'000, 'x');
    EXPECT_EQ(savedBytes(), header(12, 0));
    add(0, 1, vectorOf({number(tagLong, 1), text("ab")}));
    add(2, 1, blob("12345"));
    add(4, 1, text(longText.c_str()));
    EXPECT_EQ(savedBytes(), header(12, 3) + record(0, 0, 1, 0) + record(2, 0, 1, 19) + record(4, 0, 1, 36) +
                                word(tagVector) + word(7) + word(2) + value(tagLong, word(1)) +
                                value(tagText, "ab\0"s) + word(tagBlob) + word(9) + word(5) + "12345" +
                                value(tagText, longText + "\0"s));
    EXPECT_EQ(file.writeIndexDataFile(folder.path().string().c_str()), 0);
}

// One record of each form, read back as the format says; and then every truncation and flipped byte, read as
// the plain reader does.
TEST_F(IndexDataFileTest, EveryFormAndItsDamageReadAsFarAsTheyAreWhole) {
    std::vector<std::pair<Owned, Owned>> forms = {{text(nullptr, tagString), text("", tagString)},
                                                  {nothing(tagVector), vectorOf({})}};
    for (const Owned& withoutForm : {block(""), listOf({}), columnOf({}), recordOf({})})
        forms.emplace_back(withoutForm, Owned());
    for (const std::int32_t tag : {tagByte, tagShort, tagLong, tagFloat, tagDouble, tagUShort, tagNumber})
        forms.emplace_back(number(tag, -200.5), number(tag, -200.5));
    for (const Owned& same :
         {text("abc"), text(""), text(nullptr), text("abc", tagString), eightBytes(9, "12345678"),
          wideText(u"wide"), blob("a b"), vectorOf({text("a"), vectorOf({}), number(tagLong, 1)})})
        forms.emplace_back(same, same);
    Records expected;
    tarn::IndexFileMeasure measure(forms.size());
    for (const auto& [saved, read] : forms) {
        const auto id = static_cast<std::int32_t>(expected.size());
        add(id, 2, saved);
        measure.writeEmptyValues(1);
        measure.writeValue(&saved);
        expected.push_back({id, id % 2, 2, {Owned(), read}});
    }
    const std::string good = savedBytes();
    EXPECT_EQ(measure.length(), good.size());
    expectLoaded(good, expected);
    for (std::size_t i = 1; i < good.size(); ++i) {
        std::string low = good, high = good;
        low[i] = static_cast<char>(good[i] ^ 0x01);
        high[i] = static_cast<char>(good[i] ^ 0x80);
        for (const std::string& damaged : {good.substr(0, i), low, high}) {
            expectLoaded(damaged, tarnplain::IndexReader(damaged).records());
            ASSERT_FALSE(HasFailure()) << "byte " << i;
        }
    }
}

}  // namespace
