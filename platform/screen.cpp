// The screen that the system values describe: the classic one, or the program's own by setScreen.

#include <cstring>
#include <iterator>
#include <string_view>

#include "platform/drawing.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace {

struct IndexedValue {
    int index;
    std::int32_t value;
};

// At 96 dpi, by the Win32 index; those without a name here only clients ask for.  The task bar takes 28 rows
// of the full-screen client area.
constexpr IndexedValue classicMetrics[] = {
    {SM_CXSCREEN, 1920},
    {SM_CYSCREEN, 1080},
    {SM_CXVSCROLL, 16},
    {SM_CYHSCROLL, 16},
    {SM_CYCAPTION, 19},
    {SM_CXBORDER, 1},
    {SM_CYBORDER, 1},
    {SM_CXDLGFRAME, 3},
    {SM_CYDLGFRAME, 3},
    {9, 16},
    {10, 16},
    {SM_CXICON, 32},
    {SM_CYICON, 32},
    {13, 32},
    {14, 32},
    {SM_CYMENU, 19},
    {16, 1920},
    {17, 1033},
    {19, 1},
    {SM_CYVSCROLL, 16},
    {21, 16},
    {28, 112},
    {29, 27},
    {30, 18},
    {SM_CYSIZE, 18},
    {SM_CXFRAME, 4},
    {SM_CYFRAME, 4},
    {34, 112},
    {35, 27},
    {36, 4},
    {37, 4},
    {38, 75},
    {39, 75},
    {43, 3},
    {SM_CXEDGE, 2},
    {SM_CYEDGE, 2},
    {47, 160},
    {48, 24},
    {SM_CXSMICON, 16},
    {SM_CYSMICON, 16},
    {SM_CYSMCAPTION, 16},
    {52, 12},
    {53, 15},
    {54, 18},
    {55, 18},
    {57, 160},
    {58, 24},
    {59, 1932},
    {60, 1092},
    {61, 1928},
    {62, 1060},
    {68, 4},
    {69, 4},
    {SM_CXMENUCHECK, 13},
    {SM_CYMENUCHECK, 13},
};

constexpr COLORREF classicColors[] = {
    RGB(212, 208, 200), RGB(58, 110, 165),  RGB(10, 36, 106),
    RGB(128, 128, 128),  // 0 scroll bar
    RGB(212, 208, 200), RGB(255, 255, 255), RGB(0, 0, 0),
    RGB(0, 0, 0),  // 4 menu, window
    RGB(0, 0, 0),       RGB(255, 255, 255), RGB(212, 208, 200),
    RGB(212, 208, 200),  // 8 window text
    RGB(128, 128, 128), RGB(10, 36, 106),   RGB(255, 255, 255),
    RGB(212, 208, 200),  // 13 highlight, 15 button
    RGB(128, 128, 128), RGB(128, 128, 128), RGB(0, 0, 0),
    RGB(212, 208, 200),  // 16 button shadow
    RGB(255, 255, 255), RGB(64, 64, 64),    RGB(212, 208, 200),
    RGB(0, 0, 0),  // 20 button highlight
    RGB(255, 255, 225), RGB(181, 181, 181), RGB(0, 0, 128),
    RGB(166, 202, 240),                                          // 24 tool tip
    RGB(192, 192, 192), RGB(10, 36, 106),   RGB(212, 208, 200),  // 28 inactive caption
};

constexpr tarn::ScreenDescription makeClassic() {
    tarn::ScreenDescription screen{};
    for (const auto& metric : classicMetrics) screen.metrics[metric.index] = metric.value;
    for (std::size_t i = 0; i < std::size(classicColors); ++i) screen.colors[i] = classicColors[i];
    screen.iconTitleFont.lfHeight = -11;
    screen.iconTitleFont.lfWeight = 400;
    constexpr std::string_view face = "MS Sans Serif";
    for (std::size_t i = 0; i < face.size(); ++i) screen.iconTitleFont.lfFaceName[i] = face[i];
    screen.numColors = -1;
    screen.platformId = VER_PLATFORM_WIN32_NT;
    screen.majorVersion = 4;
    return screen;
}

constexpr tarn::ScreenDescription classic = makeClassic();
tarn::ScreenDescription replacement;
const tarn::ScreenDescription* current = &classic;

constexpr DWORD buildNumber = 1381;

}  // namespace

namespace tarn {

ScreenDescription classicScreen() {
    return classic;
}

void setScreen(const ScreenDescription* screen) {
    if (screen != nullptr) replacement = *screen;
    current = screen == nullptr ? &classic : &replacement;
}

const ScreenDescription& currentScreen() {
    return *current;
}

}  // namespace tarn

int GetSystemMetrics(int index) {
    return index < 0 || index >= static_cast<int>(std::size(current->metrics)) ? 0 : current->metrics[index];
}

COLORREF GetSysColor(int index) {
    return index < 0 || index >= static_cast<int>(std::size(current->colors)) ? 0 : current->colors[index];
}

BOOL SystemParametersInfoA(UINT action, UINT size, void* out, UINT) {
    if (action != SPI_GETICONTITLELOGFONT || out == nullptr || (size != 0 && size < sizeof(LOGFONTA))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::memcpy(out, &current->iconTitleFont, sizeof(LOGFONTA));
    return TRUE;
}

BOOL GetVersionExA(OSVERSIONINFOA* version) {
    if (version == nullptr || version->dwOSVersionInfoSize < sizeof(OSVERSIONINFOA)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    version->dwMajorVersion = static_cast<DWORD>(current->majorVersion);
    version->dwMinorVersion = 0;
    version->dwBuildNumber = buildNumber;
    version->dwPlatformId = static_cast<DWORD>(current->platformId);
    version->szCSDVersion[0] = '\0';
    return TRUE;
}

HWND GetDesktopWindow() {
    return reinterpret_cast<HWND>(ULONG_PTR{0x10010});  // the one window that this layer knows
}
