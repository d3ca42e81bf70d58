// The screen snapshot and what it is read from: present/metrics.cpp, platform/drawing/screen.cpp.

#include "present/screen.h"
#include "tests/support.h"

namespace {

// The system indices in the order of the fields; -1 for a field that is always 0.
constexpr int metricOrder[] = {0,  1, 45, 46, 11, 12, 49, 50, 32, 33, 7, 8,  4,  51,
                               15, 5, 6,  71, 72, 2,  20, -1, -1, -1, 3, 16, 17, 31};
constexpr int colorOrder[] = {18, 5, 24, 15, 22, 14, 13, 8, 4, 16, 20};

TEST(Metrics, FieldsAreInOrderAndHoldTheSystemsValues) {
    const tarnMetrics metrics;
    DWORD values[sizeof metrics / sizeof(DWORD)], *value = values;
    std::memcpy(values, &metrics, sizeof metrics);
    for (const int index : metricOrder)
        EXPECT_EQ(*++value, index < 0 ? 0 : static_cast<DWORD>(GetSystemMetrics(index))) << index;
    value += sizeof(LOGFONTA) / sizeof *value;
    for (const int index : colorOrder) EXPECT_EQ(*++value, GetSysColor(index)) << index;
    EXPECT_NE(metrics.iconTitleFont.lfHeight, 0);
    for (const int outside : {-1, 1000}) EXPECT_EQ(GetSystemMetrics(outside), 0);
    for (const int outside : {-1, 1000}) EXPECT_EQ(GetSysColor(outside), 0U);
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version - 1;
    EXPECT_FALSE(GetVersionExA(&version));
}

#if !defined(_WIN32)

TEST(Metrics, EachSystemHasItsKindAndASnapshotIsReadAgain) {
    const struct {
        std::int32_t platform, version, kind;
    } rows[] = {{0, 3, 4}, {1, 4, 3}, {2, 4, 1}, {2, 5, 0}, {3, 4, 0}, {2, 3, 2}};
    tarnMetrics earlier;
    EXPECT_EQ(earlier.paletteDisplay, 0);
    tarn::ScreenDescription screen = tarn::classicScreen();
    screen.metrics[SM_CYCAPTION] = 30;
    screen.colors[COLOR_MENU] = 7;
    screen.numColors = 0;
    for (const auto& each : rows) {
        screen.platformId = each.platform;
        screen.majorVersion = each.version;
        tarn::setScreen(&screen);
        EXPECT_EQ(tarnMetrics().osKind, each.kind) << each.platform << ' ' << each.version;
        EXPECT_EQ(tarnMetrics().cySmallCaption, each.kind == 2 ? 30 : 16) << each.kind;
    }
    earlier.sysColorChange();
    EXPECT_EQ(earlier.clrMenu, 7U);
    EXPECT_EQ(earlier.cyCaption, 19);
    earlier.init();
    EXPECT_EQ(earlier.cyCaption, 30);
    EXPECT_EQ(earlier.paletteDisplay, 1) << "a colour table of no colours";
    EXPECT_EQ(earlier.osKind, 1) << "is read once";
    tarn::setScreen(nullptr);
}

#endif

}  // namespace
