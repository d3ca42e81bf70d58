// The dictionary's types and descriptions: engine/operations.cpp.

#include "core/exception.h"
#include "tests/engine/records.h"

namespace {

using namespace tarntest;

struct Host : tarnGlobalInterfaces, tarnFieldDictionary, tarnFieldDescriptions {
    std::vector<std::int32_t> codes;  // by id; any other id throws
    char entry[80] = {};

    tarnUserDialog* userDialog() override { return nullptr; }
    tarnFieldDictionary* fieldDictionary() override { return this; }
    std::int32_t getFieldType(std::int32_t id) override { return codes.at(static_cast<std::size_t>(id)); }
    const void* getFieldRecord(std::int32_t id) override { return id == 5 ? entry : nullptr; }
};

TEST(Operations, ATextBecomesTheDictionarysType) {
    const struct {
        std::int32_t code;
        const char* given;
        Owned becomes;
    } cases[] = {
        {1, "70000", number(tagShort, 4464)},
        {2, "-12 or so", whole(-12)},
        {3, "no number", whole(0)},
        {4, "abc", number(tagChar, 'a')},
        {4, "", number(tagChar, 0)},
        {5, "text", text("text")},
        {6, "1.5", number(tagFloat, 1.5)},
        {0x10007, "-2.25e1", real(-22.5)},  // the low 16 bits count
        {0x70000, "0", text("0")},
        {-8, "8", text("8")},
    };
    for (const auto& each : cases) {
        for (const std::int32_t tag : {tagText, tagString}) {
            Host host;
            host.codes = {0, each.code};
            const Owned given = text(each.given, tag);
            tarnEngineData record;
            record.storeData(1, &given);
            record.convertOperation(&host);
            EXPECT_EQ(recordOf({{1, each.becomes}}), contentOf(record)) << each.code << ' ' << each.given;
        }
    }
}

TEST(Operations, WhatIsNoTextIsLeftAlone) {
    const Keyed fields = {
        {1, whole(5)}, {2, text(nullptr)}, {3, text(nullptr, tagString)}, {4, columnOf({})}};
    tarnEngineData record;
    Host host;
    record.setRootData(recordOf(fields).release());
    record.convertOperation(nullptr);
    record.convertOperation(&host);
    expectRecord(record, fields, 0);
}

TEST(Operations, ADescriptionStartsInsideTheDictionarysRecord) {
    tarnEngineData record;
    Host host;
    EXPECT_EQ(record.getDataDescription(5), nullptr);
    record.descriptions = &host;
    EXPECT_EQ(tarnEngineData(&record).getDataDescription(5), host.entry + 71);
    EXPECT_EQ(record.getDataDescription(6), nullptr);
}

}  // namespace
