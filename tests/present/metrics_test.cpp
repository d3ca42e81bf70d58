// The screen snapshot and the shared slot: present/metrics.cpp, present/startup.cpp.

#include "present/screen.h"
#include "present/startup.h"
#include "tests/support.h"

namespace {

// The system indices in the order of the fields; -1 for a field that is always 0.
constexpr int metricOrder[] = {0,  1, 45, 46, 11, 12, 49, 50, 32, 33, 7, 8,  4,  51,
                               15, 5, 6,  71, 72, 2,  20, -1, -1, -1, 3, 16, 17, 31};
constexpr int colorOrder[] = {18, 5, 24, 15, 22, 14, 13, 8, 4, 16, 20};

TEST(Metrics, FieldsStandInOrderAndHoldTheSystemsValues) {
    const tarnMetrics metrics;
    DWORD values[sizeof metrics / sizeof(DWORD)], *value = values;
    std::memcpy(values, &metrics, sizeof metrics);
    for (const int index : metricOrder)
        EXPECT_EQ(*++value, index < 0 ? 0 : static_cast<DWORD>(GetSystemMetrics(index))) << index;
    value += sizeof(LOGFONTA) / sizeof *value;
    for (const int index : colorOrder) EXPECT_EQ(*++value, GetSysColor(index)) << index;
    EXPECT_TRUE(metrics.iconTitleFont.lfHeight != 0 && *getGlobalPointer() == nullptr);
}

#if !defined(_WIN32)

TEST(Metrics, EachSystemHasItsKind) {
    tarn::ScreenDescription screen{};
    constexpr std::int32_t systems[][3] = {{0, 3, 4}, {1, 4, 3}, {1, 9, 3}, {2, 4, 1},
                                           {2, 5, 0}, {2, 0, 0}, {3, 4, 0}, {2, 3, 2}};
    for (const auto& [platform, version, kind] : systems) {
        screen.platformId = platform, screen.majorVersion = version;
        tarn::setScreen(&screen);
        EXPECT_EQ(tarnMetrics().osKind, kind) << platform << ' ' << version;
    }
    tarn::setScreen(nullptr);
}

#endif

}  // namespace
