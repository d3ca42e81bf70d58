// Keyed files with reports: store/keyed_file.cpp, store/index_file_reader.cpp, store/replaced_file.cpp.

#include "store/keyed_file.h"

#include "tests/values.h"

namespace {

using namespace std::string_literals;
using namespace tarntest;
using tarn::KeyedFile;
using tarn::LoadError;
using tarn::LoadReport;
using tarn::OnDamage;
using tarn::SaveError;
using tarn::Value;
using tarn::ValueView;

Value copyOf(const Owned& value) {
    return Value(ValueView(value));
}

// 13 bytes of head, 3 index records, and values of most forms.
struct Sample : KeyedFile {
    Sample() {
        set({7, 0}, 1, "abc");
        set({7, 1}, 0, copyOf(vectorOf({text("in"), vectorOf({number(tagLong, 1)}), blob("xy")})));
        set({7, 1}, 1, copyOf(wideText(u"wide")));
        set({-1, 2}, 0, 12.5);
    }
};

struct KeyedFiles : testing::Test {
    TemporaryFolder folder{inMemory};
    const std::string file = folder.file("file");

    KeyedFiles() { EXPECT_TRUE(Sample().save(file)); }

    [[nodiscard]] std::size_t files() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(folder.path()), {}));
    }
};

std::string shown(const KeyedFile& file) {
    std::string text;
    for (const tarn::RecordKey key : {tarn::RecordKey{7, 0}, {7, 1}, {-1, 2}}) {
        text += std::to_string(file.contains(key)) + ", " + std::to_string(file.size(key)) + ": ";
        for (std::int32_t i = 0; i < std::min(file.size(key), 10); ++i)
            text += readable(file.at(key, i).raw()) + ' ';
    }
    return text;
}

// What the load without a report leaves; a place that it never filled is none there too.
std::string shownByTheOldLoad(const std::string& name) {
    KeyedFile file;
    file.raw().readIndexDataFile(name.c_str());
    return shown(file);
}

TEST_F(KeyedFiles, ADamagedFileIsReadOtherwiseOrItsReportIsMilder) {
    const std::string good = contentOf(file);
    const std::string whole = shownByTheOldLoad(file);
    const auto check = [&](const std::string& content) {
        fill(file, content);
        KeyedFile kept;
        const LoadReport report = kept.load(file, OnDamage::keep);
        EXPECT_EQ(shown(kept), shownByTheOldLoad(file));
        EXPECT_EQ(report.fileSize, content.size());
        EXPECT_LE(report.offset, content.size());
        Sample restored;
        const std::string before = shown(restored);
        EXPECT_EQ(restored.load(file).error, report.error);
        EXPECT_EQ(shown(restored), report ? shown(kept) : before);
        return report;
    };
    const LoadReport report = check(good);
    EXPECT_TRUE(report);
    EXPECT_EQ(report.fields, 3);
    EXPECT_EQ(report.values, 4);
    EXPECT_EQ(check(good + "more").skipped, 4);
    for (std::size_t size = 0; size < good.size(); ++size) EXPECT_FALSE(check(good.substr(0, size))) << size;
    int unseen = 0;
    for (std::size_t i = 0; i < 8 * good.size(); ++i) {
        const bool promisesMany = i / 8 == 39 || i / 8 == 40 || i / 8 == 55 || i / 8 == 56;
        if (promisesMany) continue;  // which the first record does, and takes its time
        std::string content = good;
        content[i / 8] = static_cast<char>(content[i / 8] ^ 1 << i % 8);
        unseen += check(content) && shownByTheOldLoad(file) == whole ? 1 : 0;
    }
    // The version, the offsets in the index, the payload of an empty value, and the sizes of two vectors and a
    // blob, which say again what their counts say.
    EXPECT_EQ(unseen, 32 + 3 * 32 + 64 + 3 * 32);
}

TEST_F(KeyedFiles, EachDamageHasItsErrorAndPlace) {
    const std::string head = "\1\x0C\0\0\0\0\0\0\0\1\0\0\0\7\0\0\0\1\0\0\0\2\0\0\0\0\0\0\0"s;
    const std::string empty = "\0\0\0\0\x8\0\0\0\0\0\0\0\0\0\0\0"s;
    const std::string good = contentOf(file);
    const std::string start(good, 0, 1);
    const auto with = [&](std::size_t at, const std::string& piece) {
        std::string changed = start + head.substr(1);
        return changed.replace(at, piece.size(), piece);
    };
    std::string deep;
    for (int i = 0; i < 65; ++i) deep += "\xD\0\0\0\0\0\0\0\1\0\0\0"s;
    const struct {
        std::string content;
        LoadError error;
        std::uint64_t offset;
        std::int32_t item, id, row;
    } rows[] = {
        {with(0, "") + empty + empty, LoadError::none, 61, -1, 0, -1},
        {"", LoadError::wrongForm, 0, -1, 0, -1},
        {with(1, "\xFF"), LoadError::badHeader, 1, -1, 0, -1},
        {start + "\x0C\0\0"s, LoadError::truncated, 1, -1, 0, -1},
        {with(9, "\2"), LoadError::truncated, 29, 1, 0, -1},
        {with(24, "\x7F"), LoadError::badIndex, 13, 0, 7, -1},
        {with(9, "\2").append(head, 13, 16) + empty + empty, LoadError::badIndex, 29, 1, 7, -1},
        {with(0, "") + empty, LoadError::truncated, 45, 0, 7, 1},
        {with(0, "") + empty + "\xA\0\0\0\4\0\0\0abc"s, LoadError::truncated, 45, 0, 7, 1},
        {with(0, "") + empty + "\5\0\0\0\x9\0\0\0"s + "123456789", LoadError::badItem, 45, 0, 7, 1},
        {with(0, "") + empty + deep + empty, LoadError::tooDeep, 45 + 64 * 12, 0, 7, 1},
    };
    for (const auto& each : rows) {
        fill(file, each.content);
        KeyedFile loaded;
        const LoadReport report = loaded.load(file);
        EXPECT_EQ(report.error, each.error) << escaped(each.content);
        EXPECT_EQ(report.offset, each.offset) << escaped(each.content);
        EXPECT_EQ(report.item, each.item) << escaped(each.content);
        EXPECT_EQ(report.id, each.id) << escaped(each.content);
        EXPECT_EQ(report.row, each.row) << escaped(each.content);
    }
}

TEST_F(KeyedFiles, ASaveThatFailsLeavesTheOldFileAndNoOther) {
    const std::string before = contentOf(file);
    Owned deep = number(tagLong, 1);
    for (int i = 0; i < 64; ++i) deep = vectorOf({deep});
    Sample set;
    set.set({7, 0}, 3, copyOf(deep));
    ASSERT_TRUE(set.save(folder.file("file"), tarn::Durability::replaced));
    ASSERT_TRUE(Sample().save(file));
    set.set({7, 0}, 3, copyOf(vectorOf({deep})));
    const auto tooDeep = set.save(file);
    EXPECT_EQ(tooDeep.error, SaveError::tooDeep);
    EXPECT_EQ(tooDeep.row, 3);
    for (const Owned& value : {columnOf({}), vectorOf({text("a"), block("x")})}) {
        set.set({7, 0}, 3, copyOf(value));
        EXPECT_EQ(set.save(file).error, SaveError::noForm);
    }
    EXPECT_EQ(Sample().save("a\0b"s).error, SaveError::badName);
    EXPECT_EQ(Sample().save(folder.file("none/file")).error, SaveError::cantCreate);
    const HANDLE reader =
        CreateFileA(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const auto held = Sample().save(file);
    EXPECT_EQ(held.error, SaveError::cantReplace);
    EXPECT_NE(held.system, DWORD{ERROR_SUCCESS});
    CloseHandle(reader);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(files(), 1U);
}

}  // namespace
