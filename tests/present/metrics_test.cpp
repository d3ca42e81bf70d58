// The screen snapshot: present/metrics.cpp.

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
}

#if !defined(_WIN32)

TEST(Metrics, ASnapshotChangesWhenItIsReadAgain) {
    tarnMetrics metrics;
    EXPECT_EQ(metrics.paletteDisplay, 0);
    tarn::ScreenDescription screen{};  // numColors is 0
    screen.metrics[SM_CXSCREEN] = 640;
    screen.colors[COLOR_WINDOW] = 7;
    tarn::setScreen(&screen);
    metrics.sysColorChange();
    EXPECT_EQ(metrics.clrWindow, 7U);
    EXPECT_EQ(metrics.cxScreen, 1920);
    metrics.init();
    EXPECT_EQ(metrics.cxScreen, 640);
    EXPECT_EQ(metrics.paletteDisplay, 1);
    EXPECT_EQ(metrics.osKind, 1);
    tarn::setScreen(nullptr);
}

TEST(Metrics, EachSystemHasItsKind) {
    const struct {
        std::int32_t platform, version, kind;
    } rows[] = {{0, 3, 4}, {1, 4, 3}, {1, 9, 3}, {2, 4, 1}, {2, 5, 0}, {2, 0, 0}, {3, 4, 0}, {2, 3, 2}};
    tarn::ScreenDescription screen{};
    screen.metrics[SM_CYCAPTION] = 30;
    screen.metrics[SM_CYSMCAPTION] = 20;
    for (const auto& each : rows) {
        screen.platformId = each.platform;
        screen.majorVersion = each.version;
        tarn::setScreen(&screen);
        EXPECT_EQ(tarnMetrics().osKind, each.kind) << each.platform << ' ' << each.version;
        EXPECT_EQ(tarnMetrics().cySmallCaption, each.kind == 2 ? 30 : 20) << each.kind;
    }
    tarn::setScreen(nullptr);
}

#endif

}  // namespace
