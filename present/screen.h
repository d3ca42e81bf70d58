#pragma once

/// @file
/// The screen's sizes and colours in one snapshot, and a class that owns one bitmap with its palette: from a
/// resource, empty, or painted as a vertical gradient.
///
///     tarnMetrics metrics;                 // metrics.cxScreen 1920, metrics.clrWindow 0xFFFFFF
///     tarnBitmap logo(instance, 101, 1);   // a packed bitmap, with a palette if it has up to 256 colours
///     back.bitmapMOLT(0, 400, 250, 0, screen, &manager);   // dark green at the top, light at the bottom
///
/// Threads: no shared state; one object belongs to one thread at a time.

#include <cstdint>

#include "core/export.h"
#include "platform/win32.h"

/// A snapshot of the screen; only init and sysColorChange change it.  Sizes are in pixels.
class TARN_EXPORT tarnMetrics {
  public:
    std::int32_t osKind;  ///< 1 Windows NT 4, 2 NT 3, 3 the Windows 95 line, 4 Win32s, 0 any other
    std::int32_t cxScreen, cyScreen;
    std::int32_t cxEdge, cyEdge;
    std::int32_t cxIcon, cyIcon;
    std::int32_t cxSmallIcon, cySmallIcon;
    std::int32_t cxFrame, cyFrame;
    std::int32_t cxDlgFrame, cyDlgFrame;
    std::int32_t cyCaption;
    std::int32_t cySmallCaption;  ///< on Windows NT 3 the same as cyCaption
    std::int32_t cyMenu;
    std::int32_t cxBorder, cyBorder;
    std::int32_t cxMenuCheck, cyMenuCheck;
    std::int32_t cxVScroll, cyVScroll;
    std::int32_t zero[3];  ///< always 0
    std::int32_t cyHScroll;
    std::int32_t cxFullScreen, cyFullScreen;
    std::int32_t cySize;
    LOGFONTA iconTitleFont;
    COLORREF clrBtnText;
    COLORREF clrWindow;
    COLORREF clrInfoBk;
    COLORREF clrBtnFace;
    COLORREF clr3DLight;
    COLORREF clrHighlightText;
    COLORREF clrHighlight;
    COLORREF clrWindowText;
    COLORREF clrMenu;
    COLORREF clrBtnShadow;
    COLORREF clrBtnHighlight;
    std::int32_t paletteDisplay;  ///< 1 if the screen has a colour table, else 0

    /// Reads all fields.
    tarnMetrics();

    /// Reads all fields again but osKind.
    void init();

    /// Reads the eleven colours again.
    void sysColorChange();
};

/// Host interface, which the client implements: keeps drawing objects.  What it hands out stays its own.
class TARN_EXPORT ItarnResourceMgr {
  public:
    ItarnResourceMgr() = default;
    ItarnResourceMgr(const ItarnResourceMgr&) = default;
    ItarnResourceMgr& operator=(const ItarnResourceMgr&) = default;
    virtual ~ItarnResourceMgr() = default;

    virtual HBRUSH getBrush(COLORREF color) = 0;  ///< of this solid colour
    virtual HDC getMemoryDC() = 0;                ///< a memory device context to draw with
};

/// One bitmap with its palette.
class TARN_EXPORT tarnBitmap {
  public:
    HINSTANCE instance = nullptr;  ///< the module that holds the resource
    HBITMAP bitmap = nullptr;      ///< owned
    HPALETTE palette = nullptr;    ///< owned; NULL if there is none
    std::int32_t resourceId = 0;   ///< or any id of the caller's
    std::int32_t width = 0;        ///< in pixels; 0 until known
    std::int32_t height = 0;       ///< below 0 for a resource whose rows run from the top
    int usePalette = 0;            ///< not 0: the bitmap was loaded with a palette

    /// An object without a bitmap.
    tarnBitmap() = default;

    /// Loads a bitmap of a module, by the low 16 bits of the id: with `withPalette` 0 as LoadBitmapA does,
    /// otherwise from the packed bitmap, with a palette of all 2^bits colours if it has up to 8 bits a pixel.
    /// The colour table has to be whole, whatever biClrUsed says.  Masks (BI_BITFIELDS) may be in the header
    /// or behind it, and pixels of 4 and 8 bits may be runs (BI_RLE4, BI_RLE8).
    ///
    /// The palette's colours are read at offset 40, where the usual header ends.  The pixels of a bitmap with
    /// a longer header have the colours of the table behind it all the same; its palette hasn't.
    /// - Bad input: a resource that is missing, cut short or no packed bitmap leaves `bitmap` NULL; so do
    ///   runs that claim a picture of more than 64 MiB and 512 times their own size (not on Windows).
    tarnBitmap(HINSTANCE module, std::int32_t id, int withPalette);

    /// Makes an empty bitmap that fits the device.
    tarnBitmap(HDC device, std::int32_t columns, std::int32_t rows, std::int32_t id);

    tarnBitmap(const tarnBitmap&) = delete;
    tarnBitmap& operator=(const tarnBitmap&) = delete;
    ~tarnBitmap();

    /// Reads the size in pixels.  Without a bitmap both arguments stay untouched.
    void getSize(std::int32_t& columns, std::int32_t& rows);

    /// Paints a new bitmap for the device as a gradient of 100 bands, from the bottom up: the lowest is grey
    /// (198), the others are i + 49, i + 99, i + 99 for i from 99 down to 1.  If the height is no multiple
    /// of 100, the rest is spread over the bands, and rows left free at the top are grey.  The manager's
    /// device context gets its earlier bitmap back; a bitmap that this object held is released.  The
    /// arguments without a name have no effect.
    /// - Bad input: without a manager nothing happens; a bitmap that can't be made, or can't be selected,
    ///   isn't painted.
    void bitmapMOLT(std::int32_t, std::int32_t columns, std::int32_t rows, std::int32_t, HDC device,
                    ItarnResourceMgr* manager);

  private:
    TARN_HIDDEN void release();
    TARN_HIDDEN HBITMAP loadPaletteBitmap(std::uint16_t id);
    TARN_HIDDEN static HPALETTE createBitmapPalette(const void* packed, std::int32_t* colors);
};
