// The screen that the system values describe: the classic one, or the program's own by setScreen.
// Tests: tests/platform/screen_test.cpp, tests/present/metrics_test.cpp.

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "platform/drawing/objects.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace {

// By the Win32 index, at 96 dpi.  The task bar takes 28 rows of the full-screen client area.
constexpr std::int32_t classicMetrics[] = {
    // 0: screen, scroll bars, caption, border, dialog frame, scroll thumb
    1920, 1080, 16, 16, 19, 1, 1, 3, 3, 16,
    // 10: scroll thumb, icon, cursor, menu, full-screen client area, mouse
    16, 32, 32, 32, 32, 19, 1920, 1033, 0, 1,
    // 20: scroll arrows, 28: smallest window
    16, 16, 0, 0, 0, 0, 0, 0, 112, 27,
    // 30: title buttons, frame, smallest window, double click, icon spacing
    18, 18, 4, 4, 112, 27, 4, 4, 75, 75,
    // 43: mouse buttons, edge, minimised window, small icon
    0, 0, 0, 3, 0, 2, 2, 160, 24, 16,
    // 50: small icon, small caption and its buttons, menu buttons, minimised and largest window
    16, 16, 12, 15, 18, 18, 0, 160, 24, 1932,
    // 60: largest and maximised window, 68: drag
    1092, 1928, 1060, 0, 0, 0, 0, 0, 4, 4,
    // 71: menu check mark
    0, 13, 13};

constexpr COLORREF face = RGB(212, 208, 200), white = RGB(255, 255, 255), black = RGB(0, 0, 0);
constexpr COLORREF grey = RGB(128, 128, 128), blue = RGB(10, 36, 106);

constexpr COLORREF classicColors[] = {
    // 0: scroll bar, desktop, active and inactive caption, menu
    face, RGB(58, 110, 165), blue, grey, face,
    // 5: window, its frame, menu text, window text, caption text
    white, black, black, black, white,
    // 10: active and inactive border, application, highlight, its text
    face, face, grey, blue, white,
    // 15: button, its shadow, grey text, button text, inactive caption text
    face, grey, grey, black, face,
    // 20: button highlight, dark shadow, light, tool tip text, tool tip
    white, RGB(64, 64, 64), face, black, RGB(255, 255, 225),
    // 25: alternate button, link, active and inactive gradient, menu highlight, menu bar
    RGB(181, 181, 181), RGB(0, 0, 128), RGB(166, 202, 240), RGB(192, 192, 192), blue, face};

constexpr std::string_view iconFace = "MS Sans Serif";

constexpr tarn::ScreenDescription makeClassic() {
    tarn::ScreenDescription screen{};
    std::copy(std::begin(classicMetrics), std::end(classicMetrics), screen.metrics);
    std::copy(std::begin(classicColors), std::end(classicColors), screen.colors);
    screen.iconTitleFont.lfHeight = -11;
    screen.iconTitleFont.lfWeight = 400;
    std::copy(iconFace.begin(), iconFace.end(), screen.iconTitleFont.lfFaceName);
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
