// Keyed records and their file: store/index_data_file.cpp, store/index_file_writer.cpp,
// store/index_file_reader.cpp.

#include "store/index_data_file.h"

#include "tests/values.h"

namespace {

using namespace tarntest;

// The bytes of a file: a number is a word, ' begins characters, % is a NUL.
std::string bytesOf(const std::string& parts) {
    std::istringstream stream(parts);
    std::string bytes;
    for (std::string part; stream >> part;) {
        if (part[0] == '\'') std::replace(part.begin(), part.end(), '%', '\0');
        if (part[0] == '\'') bytes += part.substr(1);
        for (int shift = part[0] == '\'' ? 32 : 0; shift < 32; shift += 8)
            bytes += static_cast<char>(std::stoul(part, nullptr, 0) >> shift);
    }
    return bytes;
}

// The records with an id below 20: "id.type(repeats) value value ", up to three values.
std::string shown(tarnIndexDataFile& file) {
    std::string text;
    for (std::int32_t key = 0; key < 40; ++key) {
        const std::int32_t id = key / 2, type = key % 2, repeats = file.getNumberRepeats(id, type);
        if (file.checkIndexRecord(id, type) == 0) continue;
        text += std::to_string(id) + "." + std::to_string(type) + "(" + std::to_string(repeats) + ") ";
        for (std::int32_t repeat = 0; repeat < std::min(repeats, 3); ++repeat) {
            MOLTVARIANT* value = nullptr;
            file.getDataRecord(id, type, repeat, &value);
            text += describe(value) + " ";
        }
    }
    return text;
}

struct IndexDataFileTest : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string name = folder.file("a.dat");
    tarnIndexDataFile file, loaded;

    std::string saved() {
        EXPECT_EQ(file.writeIndexDataFile(name.c_str()), 1);
        return contentOf(name);
    }
    std::string shownOf(const std::string& bytes) {
        fill(name, bytes);
        EXPECT_EQ(loaded.readIndexDataFile(name.c_str()), 1);
        return shown(loaded);
    }
};

TEST_F(IndexDataFileTest, RecordsKeepTheirFirstRepeatsAndOnlyGrow) {
    for (const std::int32_t repeats : {2, 9}) file.addIndexRecord(1, 0, repeats);
    file.addIndexRecord(1, 1, -4);
    for (const std::int32_t repeat : {-1, 1, 2}) EXPECT_EQ(file.addDataRecord(1, 0, repeat, "x"), 1);
    EXPECT_EQ(shown(file), "1.0(2) 0:0 10:x 1.1(-4) ");
    for (const std::int32_t repeats : {1, 3}) EXPECT_EQ(file.updateIndexRecord(1, 0, repeats), 1);
    EXPECT_EQ(file.updateIndexRecord(2, 0, 2) + file.addDataRecord(7, 0, 0, "x"), 0);
    EXPECT_TRUE(file.addDataRecord(1, 0, 2, "y") == 1 && file.updateIndexRecord(1, 1, 1) == 1);
    EXPECT_EQ(shown(file), "1.0(3) 0:0 10:x 10:y 1.1(1) 0:0 ");
    EXPECT_EQ(file.getNumberIndexRecords(0), 1);
}

TEST_F(IndexDataFileTest, ValuesAreCopiedInAndTextsOut) {
    file.addIndexRecord(1, 0, 2);
    for (const char* expected : {"0", ""}) {  // never filled, then filled with NULL
        char* out = nullptr;
        EXPECT_EQ(file.getDataRecord(1, 0, 0, &out), 1);
        EXPECT_STREQ(std::unique_ptr<char[]>(out).get(), expected);
        EXPECT_TRUE(file.getDataRecord(1, 0, 2, &out) == 1 && out == nullptr);
        file.addDataRecord(1, 0, 0, static_cast<const char*>(nullptr));
    }
    const Owned list = valueOf("20:[10:inner]");
    MOLTVARIANT marker, *stored = nullptr;
    file.addDataRecord(1, 0, 0, &list);
    file.getDataRecord(1, 0, 0, &stored);
    file.addDataRecord(1, 0, 0, stored->payload.list->getAt(0));  // a part of the value that it replaces
    EXPECT_EQ(shown(file), "1.0(2) 10:inner 0:0 ");
    stored = &marker;
    EXPECT_TRUE(file.getDataRecord(9, 0, 0, &stored) == 0 && stored == &marker);
}

// Offsets leave out the prefixes of a vector's elements.
TEST_F(IndexDataFileTest, ABytesPlaceOrAnOffsetIsWrong) {
    EXPECT_EQ(saved(), bytesOf("'@ 12 1 0"));
    constexpr const char* values[] = {"10:abc", "0:", "13:[5:1,10:ab]", "15:12345", "3:42"};
    for (std::int32_t i = 0; i < 7; ++i) {
        const Owned value = valueOf(values[i % 5]);
        file.addIndexRecord(i, 1, i < 5 ? 1 : 0);
        file.addDataRecord(i, 1, 0, &value);
    }
    EXPECT_EQ(saved(),
              bytesOf("'@ 12 1 7  0 1 1 0  1 1 1 12  2 1 1 28  3 1 1 51  4 1 1 68  5 1 0 80  6 1 0 80"
                      " 10 4 'abc%  0 8 0 0  13 11 2 5 8 0 0x3FF00000 10 3 'ab%  15 9 5 '12345  3 4 42"));
    EXPECT_EQ(file.writeIndexDataFile(folder.path().string().c_str()) + file.writeIndexDataFile(nullptr), 0);
}

// One record of each form, read back as the format says, and then every truncation and flipped byte of it.
TEST_F(IndexDataFileTest, AFormReadsBackOtherwiseOrDamageIsNotSafe) {
    // Those that come back in another form are at the end.
    const auto values = split(
        "2:-2|4:1.5|5:-1e+300|7:65535|1:200|14:7|9:9|10:|10:NULL|17:abc|11:wide|15:a_b|"
        "13:[10:a,13:[],3:1]|17:NULL|13:NULL|16:0123456789abcdef|20:[]",
        '|');
    const std::string changed[] = {"17:", "13:[]", "0:0", "0:0"};
    std::string expected;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto id = static_cast<std::int32_t>(i);
        const Owned value = valueOf(values[i]);
        file.addIndexRecord(id, id % 2, 2);
        file.addDataRecord(id, id % 2, 1, &value);
        expected += std::to_string(i) + "." + std::to_string(i % 2) + "(2) 0:0 " +
                    (i < 13 ? values[i] : changed[i - 13]) + " ";
    }
    const std::string good = saved();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(shownOf(contentOf(name)), expected);
        ASSERT_EQ(loaded.writeIndexDataFile(name.c_str()), 1);
    }
    for (std::size_t i = 0; i < good.size(); ++i) {
        shownOf(good.substr(0, i));
        for (const unsigned flip : {0x01U, 0x80U}) {
            std::string damaged = good;
            damaged[i] = static_cast<char>(static_cast<unsigned char>(damaged[i]) ^ flip);
            shownOf(damaged);
        }
    }
}

constexpr char hostileFiles[] =
#include "tests/store/hostile_files.txt"
    ;

TEST_F(IndexDataFileTest, WhatAFilePromisesAndDoesntHoldReadsAsEmpty) {
    const auto valuesOf = [&](const std::string& data) {
        const std::string values = shownOf(bytesOf("'@ 12 1 2 1 0 1 0 2 0 1 0") + data);
        const std::size_t second = values.find(" 2.0(1) ");
        return values.substr(7, second - 7) + values.substr(second + 7, values.size() - second - 8);
    };
    expectAnswers(hostileFiles, [&](const std::string& kind, const std::vector<std::string>& cells) {
        loaded.addIndexRecord(1, 0, 1);  // gone with the next load
        return kind == "file" ? shownOf(bytesOf(cells[0])) : valuesOf(bytesOf(cells[0]));
    });
    // 64 vectors in each other hold a value; what lies deeper is passed over.
    for (const int depth : {64, 65, 100'000}) {
        std::string deep, open, close;
        for (int i = 0; i < depth; ++i) deep += bytesOf("13 0 1");
        for (int i = 0; i < 64; ++i) open += "13:[", close += "]";
        for (const auto& [value, shown] :
             {std::pair("3 4 5", "3:5"), {"15 4 3 'abc", "15:abc"}, {"13 0 2 15 4 3 'abc 3 4 5", "0:0"}})
            EXPECT_EQ(valuesOf(deep + bytesOf(value) + bytesOf("3 4 4")),
                      open + (depth > 64 ? "0:0" : shown) + close + " 3:4");
        for (const char* cut : {"", "3 4", "3 4 '123", "15 4 4 'abc", "13 0"})
            EXPECT_EQ(valuesOf(deep + bytesOf(cut)), "0:0 0:0");
    }
    EXPECT_TRUE(loaded.readIndexDataFile(folder.file("missing").c_str()) == 0 && shown(loaded).empty());
    EXPECT_EQ(loaded.readIndexDataFile(nullptr), 0);
}

}  // namespace
