// The screen snapshot and the shared slot: present/metrics.cpp, present/startup.cpp.

#include <cstddef>
#include <cstring>

#include "present/screen.h"
#include "present/startup.h"
#include "tests/support.h"

#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace {

// The system indices in the order of the fields; -1 for a field that is always 0.
constexpr int metricOrder[] = {0,  1, 45, 46, 11, 12, 49, 50, 32, 33, 7, 8,  4,  51,
                               15, 5, 6,  71, 72, 2,  20, -1, -1, -1, 3, 16, 17, 31};
constexpr int colorOrder[] = {18, 5, 24, 15, 22, 14, 13, 8, 4, 16, 20};

void expectSystemValues(const tarnMetrics& metrics) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(&metrics) + offsetof(tarnMetrics, cxScreen);
    for (const int index : metricOrder) {
        std::int32_t value = 0;
        std::memcpy(&value, bytes, sizeof value);
        bytes += sizeof value;
        EXPECT_EQ(value, index < 0 ? 0 : GetSystemMetrics(index)) << index;
        EXPECT_TRUE(index < 0 || value > 0) << index;
    }
    bytes += sizeof(LOGFONTA);
    for (const int index : colorOrder) {
        COLORREF value = 0;
        std::memcpy(&value, bytes, sizeof value);
        bytes += sizeof value;
        EXPECT_EQ(value, GetSysColor(index)) << index;
    }
}

TEST(Metrics, FieldsStandInOrderAndHoldTheSystemsValues) {
    const tarnMetrics metrics;
    EXPECT_EQ(offsetof(tarnMetrics, paletteDisplay), 4 + sizeof metricOrder + 60 + sizeof colorOrder);
    expectSystemValues(metrics);
    EXPECT_NE(metrics.iconTitleFont.lfHeight, 0);
    EXPECT_EQ(metrics.paletteDisplay, 0);
}

#if !defined(_WIN32)

TEST(Metrics, EachSystemHasItsKind) {
    const struct {
        std::int32_t platform, version, kind;
    } rows[] = {{0, 3, 4}, {0, 4, 4}, {1, 4, 3}, {1, 9, 3}, {2, 4, 1},
                {2, 3, 2}, {2, 5, 0}, {2, 0, 0}, {3, 4, 0}};
    for (const auto& row : rows) {
        tarn::ScreenDescription screen = tarn::classicScreen();
        screen.platformId = row.platform;
        screen.majorVersion = row.version;
        screen.metrics[SM_CYCAPTION] = 91;
        tarn::setScreen(&screen);
        const tarnMetrics metrics;
        tarn::setScreen(nullptr);
        EXPECT_EQ(metrics.osKind, row.kind) << row.platform << ' ' << row.version;
        EXPECT_EQ(metrics.cySmallCaption, row.kind == 2 ? 91 : 16);
    }
}

TEST(Metrics, ASnapshotChangesWhenItIsReadAgain) {
    tarnMetrics metrics;
    tarn::ScreenDescription screen = tarn::classicScreen();
    std::int32_t next = 1000;
    for (std::int32_t& metric : screen.metrics) metric = next++;
    for (COLORREF& color : screen.colors) color = static_cast<COLORREF>(next++);
    std::strcpy(screen.iconTitleFont.lfFaceName, "Fixed");
    screen.numColors = 0;
    screen.majorVersion = 3;
    tarn::setScreen(&screen);
    EXPECT_EQ(metrics.cxScreen, 1920);
    metrics.sysColorChange();
    EXPECT_EQ(metrics.clrMenu, GetSysColor(COLOR_MENU));
    EXPECT_EQ(metrics.cxScreen, 1920);
    metrics.init();
    expectSystemValues(metrics);
    EXPECT_STREQ(metrics.iconTitleFont.lfFaceName, "Fixed");
    EXPECT_EQ(metrics.paletteDisplay, 1);
    EXPECT_EQ(metrics.osKind, 1) << "set once";
    tarn::setScreen(nullptr);
}

#endif

TEST(Startup, TheSharedSlotKeepsWhatAModuleWrites) {
    void** const slot = getGlobalPointer();
    EXPECT_EQ(*slot, nullptr);
    *slot = slot;
    EXPECT_EQ(getGlobalPointer(), slot);
    EXPECT_EQ(*getGlobalPointer(), slot);
    *slot = nullptr;
}

}  // namespace
