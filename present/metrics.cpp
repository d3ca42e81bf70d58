// The screen snapshot: one table of fields per source of values.
// Tests: tests/present/metrics_test.cpp.

#include "platform/win32.h"
#include "present/screen.h"

namespace {

struct MetricField {
    std::int32_t tarnMetrics::*field;
    int index;
};

constexpr MetricField metricFields[] = {
    {&tarnMetrics::cxScreen, SM_CXSCREEN},
    {&tarnMetrics::cyScreen, SM_CYSCREEN},
    {&tarnMetrics::cxEdge, SM_CXEDGE},
    {&tarnMetrics::cyEdge, SM_CYEDGE},
    {&tarnMetrics::cxIcon, SM_CXICON},
    {&tarnMetrics::cyIcon, SM_CYICON},
    {&tarnMetrics::cxSmallIcon, SM_CXSMICON},
    {&tarnMetrics::cySmallIcon, SM_CYSMICON},
    {&tarnMetrics::cxFrame, SM_CXFRAME},
    {&tarnMetrics::cyFrame, SM_CYFRAME},
    {&tarnMetrics::cxDlgFrame, SM_CXDLGFRAME},
    {&tarnMetrics::cyDlgFrame, SM_CYDLGFRAME},
    {&tarnMetrics::cyCaption, SM_CYCAPTION},
    {&tarnMetrics::cySmallCaption, SM_CYSMCAPTION},
    {&tarnMetrics::cyMenu, SM_CYMENU},
    {&tarnMetrics::cxBorder, SM_CXBORDER},
    {&tarnMetrics::cyBorder, SM_CYBORDER},
    {&tarnMetrics::cxMenuCheck, SM_CXMENUCHECK},
    {&tarnMetrics::cyMenuCheck, SM_CYMENUCHECK},
    {&tarnMetrics::cxVScroll, SM_CXVSCROLL},
    {&tarnMetrics::cyVScroll, SM_CYVSCROLL},
    {&tarnMetrics::cyHScroll, SM_CYHSCROLL},
    {&tarnMetrics::cxFullScreen, SM_CXFULLSCREEN},
    {&tarnMetrics::cyFullScreen, SM_CYFULLSCREEN},
    {&tarnMetrics::cySize, SM_CYSIZE},
};

struct ColorField {
    COLORREF tarnMetrics::*field;
    int index;
};

constexpr ColorField colorFields[] = {
    {&tarnMetrics::clrBtnText, COLOR_BTNTEXT},
    {&tarnMetrics::clrWindow, COLOR_WINDOW},
    {&tarnMetrics::clrInfoBk, COLOR_INFOBK},
    {&tarnMetrics::clrBtnFace, COLOR_BTNFACE},
    {&tarnMetrics::clr3DLight, COLOR_3DLIGHT},
    {&tarnMetrics::clrHighlightText, COLOR_HIGHLIGHTTEXT},
    {&tarnMetrics::clrHighlight, COLOR_HIGHLIGHT},
    {&tarnMetrics::clrWindowText, COLOR_WINDOWTEXT},
    {&tarnMetrics::clrMenu, COLOR_MENU},
    {&tarnMetrics::clrBtnShadow, COLOR_BTNSHADOW},
    {&tarnMetrics::clrBtnHighlight, COLOR_BTNHIGHLIGHT},
};

constexpr std::int32_t windowsNt3 = 2;

struct KnownSystem {
    DWORD platform;
    DWORD majorVersion;  // 0: any
    std::int32_t kind;
};

constexpr KnownSystem knownSystems[] = {
    {VER_PLATFORM_WIN32_NT, 4, 1},
    {VER_PLATFORM_WIN32_NT, 3, windowsNt3},
    {VER_PLATFORM_WIN32_WINDOWS, 0, 3},
    {VER_PLATFORM_WIN32s, 0, 4},
};

std::int32_t readOsKind() {
    OSVERSIONINFOA version{};
    version.dwOSVersionInfoSize = sizeof version;
    if (GetVersionExA(&version) == FALSE) return 0;
    for (const KnownSystem& known : knownSystems) {
        const bool anyVersion = known.majorVersion == 0;
        if (known.platform == version.dwPlatformId &&
            (anyVersion || known.majorVersion == version.dwMajorVersion)) {
            return known.kind;
        }
    }
    return 0;
}

}  // namespace

tarnMetrics::tarnMetrics() : osKind(readOsKind()), zero{}, iconTitleFont{} {
    init();
}

void tarnMetrics::init() {
    for (const MetricField& metric : metricFields) this->*metric.field = GetSystemMetrics(metric.index);
    if (osKind == windowsNt3) cySmallCaption = GetSystemMetrics(SM_CYCAPTION);
    SystemParametersInfoA(SPI_GETICONTITLELOGFONT, sizeof iconTitleFont, &iconTitleFont, 0);
    sysColorChange();

    const HWND desktop = GetDesktopWindow();
    const HDC screen = GetDC(desktop);
    paletteDisplay = GetDeviceCaps(screen, NUMCOLORS) >= 0 ? 1 : 0;
    ReleaseDC(desktop, screen);
}

void tarnMetrics::sysColorChange() {
    for (const ColorField& color : colorFields) this->*color.field = GetSysColor(color.index);
}
