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

TEST(Operations, ATextAloneBecomesTheDictionarysType) {
    const struct {
        std::int32_t code;
        const char* given;
        Owned becomes;
    } cases[] = {
        {1, "70000", number(tagShort, 4464)},
        {2, "-12 or so", whole(-12)},
        {4, "abc", number(tagChar, 'a')},
        {5, "text", text("text")},
        {6, "1.5", number(tagFloat, 1.5)},
        {0x10007, "-2.25e1", number(tagDouble, -22.5)},  // the low 16 bits count
        {-8, "8", text("8")},
    };
    for (const auto& each : cases) {
        Keyed fields = {{0, text(each.given)}, {1, text(each.given, tagString)}, {2, whole(5)},
                        {3, text(nullptr)},    {4, text(nullptr, tagString)},    {5, columnOf({})}};
        tarnEngineData record;
        Host host;
        host.codes = {each.code, each.code};
        record.setRootData(recordOf(fields).release());
        record.convertOperation(&host);
        fields[0].second = fields[1].second = each.becomes;
        expectRecord(record, fields, 0);
    }
}

TEST(Operations, ADescriptionStartsInsideTheDictionarysRecord) {
    tarnEngineData record;
    Host host;
    EXPECT_EQ(record.getDataDescription(5), nullptr);
    record.descriptions = &host;
    EXPECT_EQ(tarnEngineData(&record).getDataDescription(5), host.entry + 71);
}

}  // namespace
