// The screen snapshot and the shared slot: present/metrics.cpp, present/startup.cpp.

#include <cstring>

#include "present/screen.h"
#include "present/startup.h"
#include "tests/support.h"

namespace {

// The system indices in the order of the fields; -1 for a field that is always 0.
constexpr int metricOrder[] = {0,  1, 45, 46, 11, 12, 49, 50, 32, 33, 7, 8,  4,  51,
                               15, 5, 6,  71, 72, 2,  20, -1, -1, -1, 3, 16, 17, 31};
constexpr int colorOrder[] = {18, 5, 24, 15, 22, 14, 13, 8, 4, 16, 20};

void expectSystemValues(const tarnMetrics& metrics) {
    DWORD values[sizeof metrics / sizeof(DWORD)], *value = values;
    std::memcpy(values, &metrics, sizeof metrics);
    for (const int index : metricOrder) {
        EXPECT_EQ(*++value, index < 0 ? 0 : static_cast<DWORD>(GetSystemMetrics(index))) << index;
        EXPECT_TRUE(index < 0 || *value > 0) << index;
    }
    value += sizeof(LOGFONTA) / sizeof *value;
    for (const int index : colorOrder) EXPECT_EQ(*++value, GetSysColor(index)) << index;
    EXPECT_NE(metrics.iconTitleFont.lfHeight, 0);
}

TEST(Metrics, FieldsStandInOrderAndHoldTheSystemsValues) {
    const tarnMetrics metrics;
    expectSystemValues(metrics);
    EXPECT_EQ(metrics.paletteDisplay, 0);
    EXPECT_EQ(*getGlobalPointer(), nullptr) << "the slot that the modules share";
    *getGlobalPointer() = getGlobalPointer();
    EXPECT_EQ(*getGlobalPointer(), getGlobalPointer());
}

#if !defined(_WIN32)

TEST(Metrics, EachSystemHasItsKindAndASnapshotKeepsIt) {
    tarnMetrics kept;
    tarn::ScreenDescription screen{};
    for (int i = 0; i < 100; ++i) screen.metrics[i] = 1000 + i;
    for (COLORREF i = 0; i < 32; ++i) screen.colors[i] = 2000 + i;
    screen.iconTitleFont.lfHeight = -11;
    constexpr std::int32_t systems[][3] = {{0, 3, 4}, {0, 4, 4}, {1, 4, 3}, {1, 9, 3}, {2, 4, 1},
                                           {2, 5, 0}, {2, 0, 0}, {3, 4, 0}, {2, 3, 2}};
    for (const auto& [platform, version, kind] : systems) {
        screen.platformId = platform;
        screen.majorVersion = version;
        tarn::setScreen(&screen);
        const tarnMetrics metrics;
        EXPECT_EQ(metrics.osKind, kind) << platform << ' ' << version;
        EXPECT_EQ(metrics.cySmallCaption, kind == 2 ? 1004 : 1051);
    }
    kept.sysColorChange();
    EXPECT_TRUE(kept.clrMenu == 2004U && kept.cxScreen == 1920);
    kept.init();
    expectSystemValues(kept);
    EXPECT_EQ(kept.paletteDisplay, 1);
    tarn::setScreen(nullptr);
}

#endif

}  // namespace
