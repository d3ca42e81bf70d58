// engine/operations.cpp.

#include "core/exception.h"
#include "engine/engine_data.h"
#include "tests/values.h"

namespace {

using tarntest::describe, tarntest::number, tarntest::Owned, tarntest::text;

struct Host : tarnGlobalInterfaces, tarnFieldDictionary, tarnFieldDescriptions {
    std::vector<std::int32_t> codes;  // by id; any other id throws
    char entry[80] = {};

    tarnUserDialog* userDialog() override { return nullptr; }
    tarnFieldDictionary* fieldDictionary() override { return this; }
    std::int32_t getFieldType(std::int32_t id) override { return codes.at(static_cast<std::size_t>(id)); }
    const void* getFieldRecord(std::int32_t id) override { return id == 5 ? entry : nullptr; }
};

TEST(Operations, TheDictionaryDecidesWhatATextBecomes) {
    const std::tuple<std::int32_t, const char*, Owned> rows[] = {
        {1, "70000", number(tagShort, 4464)},
        {3, "no number", number(tagLong, 0)},
        {2, "-12 or so", number(tagLong, -12)},
        {4, "abc", number(tagChar, 'a')},
        {4, "", number(tagChar, 0)},
        {5, "text", text("text")},
        {6, "1.5", number(tagFloat, 1.5)},
        {0x10007, "-2.25e1", number(tagDouble, -22.5)},
        {0x70000, "0", text("0")},
        {-8, "8", text("8")}};
    for (const std::int32_t tag : {tagText, tagString}) {
        tarnEngineData record;
        Host host;
        for (const auto& [code, given, result] : rows) {
            const Owned field = text(given, tag);
            record.storeData(record.fields->count, &field);
            host.codes.push_back(code);
        }
        const Owned unasked[] = {number(tagLong, 5), text(nullptr), text(nullptr, tagString)};
        for (const Owned& field : unasked) record.storeData(record.fields->count, &field);
        record.convertOperation(nullptr);
        record.convertOperation(&host);
        for (std::int32_t i = 0; const auto& row : rows)
            EXPECT_EQ(describe(record.fields->values->getAt(i++)), describe(&std::get<2>(row))) << i;
        record.descriptions = &host;
        EXPECT_EQ(tarnEngineData(&record).getDataDescription(5), host.entry + 71);
    }
}

}  // namespace
