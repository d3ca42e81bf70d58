// engine/operations.cpp.

#include "core/exception.h"
#include "engine/engine_data.h"
#include "tests/values.h"

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

TEST(Operations, TheDictionaryDecidesWhatATextBecomes) {
    const std::tuple<std::int32_t, std::string, const char*> rows[] = {{1, "70000", "2:4464"},
                                                                       {3, "no number", "3:0"},
                                                                       {2, "-12 or so", "3:-12"},
                                                                       {4, "abc", "6:97"},
                                                                       {4, "", "6:0"},
                                                                       {5, "text", "10:text"},
                                                                       {6, "1.5", "4:1.5"},
                                                                       {0x10007, "-2.25e1", "5:-22.5"},
                                                                       {0x70000, "0", "10:0"},
                                                                       {-8, "8", "10:8"}};
    for (const char* tag : {"10:", "17:"}) {
        tarnEngineData record;
        Host host;
        std::string expected = "22:[";
        for (const auto& [code, given, result] : rows) {
            const Owned field = valueOf(tag + given);
            expected += std::to_string(record.fields->count) + "=" + result + ",";
            record.storeData(record.fields->count, &field);
            host.codes.push_back(code);
        }
        for (const char* unasked : {"3:5", "10:NULL", "17:NULL"}) {
            const Owned field = valueOf(unasked);
            record.storeData(record.fields->count, &field);
        }
        record.convertOperation(nullptr);
        record.convertOperation(&host);
        EXPECT_EQ(describe(record.getRootData()), expected + "10=3:5,11=10:NULL,12=17:NULL]");
        record.descriptions = &host;
        EXPECT_EQ(tarnEngineData(&record).getDataDescription(5), host.entry + 71);
    }
}

}  // namespace
