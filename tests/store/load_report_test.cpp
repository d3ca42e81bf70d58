// What reports say to people: store/load_report.cpp.

#include "store/load_report.h"

#include "tests/support.h"

namespace {

using tarn::LoadError;
using tarn::LoadReport;
using tarn::SaveError;

TEST(LoadReportTest, AMessageLeavesOutWhereOrWhyOrSaysItTwice) {
    const struct {
        LoadReport report;
        std::string name, message;
    } rows[] = {
        {{.error = LoadError::truncated, .offset = 8997, .fileSize = 9000, .item = 3, .id = 336, .row = 279},
         "half.txt",
         "half.txt: byte 8997 of 9000: field 336, row 279: the file ends within it"},
        {{.error = LoadError::badName}, std::string("a\0b", 3), "a: the name is empty or has a NUL in it"},
        {{.rows = 1, .values = 2, .skipped = 3, .skippedAt = 88},
         "a.dat",
         "a.dat: 2 values in 1 row, 3 skipped from byte 88 on"},
        {{.values = 1}, "", "1 value"},
    };
    for (const auto& each : rows) EXPECT_EQ(each.report.message(each.name), each.message);
    const std::string missing =
        LoadReport{.error = LoadError::cantOpen, .system = ERROR_FILE_NOT_FOUND}.message("a.dat");
    EXPECT_TRUE(missing.starts_with("a.dat: the file can't be opened: ")) << missing;
    EXPECT_NE(missing.back(), '\n');
    const tarn::SaveReport unsaved{.error = SaveError::noForm, .id = 5, .row = 3};
    EXPECT_EQ(unsaved.message("b.dat"), "b.dat: field 5, row 3: the form of the file can't hold it");
}

TEST(LoadReportTest, EveryErrorHasATextOfItsOwn) {
    const auto last = static_cast<std::int32_t>(LoadError::tooDeep);
    for (std::int32_t a = 0; a <= last + 1; ++a) {
        for (std::int32_t b = 0; b < a; ++b) {
            EXPECT_STRNE(toText(static_cast<LoadError>(a)), toText(static_cast<LoadError>(b)));
        }
    }
    EXPECT_STREQ(toText(SaveError::tooDeep), toText(LoadError::tooDeep));
}

}  // namespace
