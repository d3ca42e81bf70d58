// What a client's window takes from the library: its menus from a scrambled file, the items of a print-out,
// and the picture behind its title.
//
//   client_window [PICTURE]     PICTURE is the file for the picture, build/gradient.png if none is given
//
// It runs in the repository's root.  The clock is stopped, so that every run prints the same.

#include <png.h>

#include <cstdio>
#include <map>
#include <memory>
#include <vector>

#include "core/string.h"
#include "core/variant.h"
#include "fintext/financial_text.h"
#include "platform/host.h"
#include "present/menu.h"
#include "present/print_data.h"
#include "present/screen.h"

namespace {

constexpr const char* menuFile = "examples/data/client_menu.mnu";
constexpr const char* rule = "----------------------------------------";

// --- Menus.  What the owner-draw code of a window gets of an entry is its item data, the node.

void showEntry(HMENU menu, int position, int depth) {
    MENUITEMINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = MIIM_ID | MIIM_SUBMENU | MIIM_DATA | MIIM_FTYPE;
    if (GetMenuItemInfoA(menu, static_cast<UINT>(position), TRUE, &info) == 0) return;
    const auto* const node = reinterpret_cast<const tarnMenuDef*>(info.dwItemData);
    const char* const drawn = (info.fType & MFT_OWNERDRAW) != 0 ? "owner-drawn" : "not owner-drawn";
    const int width = 28 - 2 * depth;
    std::printf("%*s", 2 * depth, "");
    if (node->kind == tarn::menuSeparator) {
        std::printf("%.*s\n", width, rule);
        return;
    }
    std::printf("%-*s picture %2d, %s, ", width, node->label, node->number, drawn);
    if (info.hSubMenu != nullptr) {
        std::printf("%d entries\n", GetMenuItemCount(info.hSubMenu));
    } else {
        std::printf("command %u, \"%s\"\n", info.wID, node->extra);
    }
}

void showMenu(HMENU menu, int depth) {
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        showEntry(menu, position, depth);
        if (const HMENU below = GetSubMenu(menu, position)) showMenu(below, depth + 1);
    }
}

bool showMenus() {
    tarnMenuParser parser;
    tarnMenuDef* const root = parser.getMenuDef(menuFile, 1);
    if (root->childCount == 0) return false;
    root->createMenu();
    std::printf("Menu of %s\n", root->label);
    showMenu(root->menu, 1);
    const tarnMenuDef* const print = root->find(1403);
    std::printf("Command 1403 is %s in %s\n\n", print->label, print->parent->label);
    return true;
}

// --- Print items.  What `extra` and the four words of a row mean is the client's affair: here the first word
// is the column that the row's text begins in, and 0 begins a new line.

constexpr std::int32_t heading = 1;                                                // in `extra`
enum ItemId : std::uint8_t { titleItem = 1, noteItem, positionsItem, totalItem };  // in `id`

struct Position {
    const char *symbol, *shares;
    double price;
};
constexpr Position positions[] = {{"ABC", "200", 132.4375}, {"MOLT", "1500", 12.5}, {"XYZ", "40", 87.25}};

// A view: the print items make their own copies of texts.
MOLTVARIANT viewOf(tarnString& text) {
    MOLTVARIANT value;
    value.tag = tagString;
    value.payload.string = &text;
    return value;
}

MOLTVARIANT amount(double number) {
    MOLTVARIANT value;
    value.tag = tagDouble;
    value.payload.doubleValue = number;
    return value;
}

void storeText(tarnPrintData& data, ItemId id, const char* text, std::int32_t flags, std::int32_t extra) {
    tarnString string(text);
    const MOLTVARIANT value = viewOf(string);
    data.storeData(id, &value, flags, extra);
}

void storeCell(tarnPrintData& data, std::int32_t column, const MOLTVARIANT& value) {
    _MultiPrintStruct cell;
    cell.id = positionsItem;
    cell.words[0] = column;
    data.storeMultiData(&cell, &value);
}

void fillWithPositions(tarnPrintData& data) {
    storeText(data, titleItem, "Positions of account 4711", 0, heading);
    data.storeDateTime(0);
    storeText(data, noteItem, "Prices are those of the last close", tarn::printBullet, 0);
    storeText(data, noteItem, "Open orders are left out", tarn::printBullet, 0);
    MOLTVARIANT container;
    container.tag = tagPlain9;
    data.storeData(positionsItem, &container, tarn::printMultiData, 0);
    double total = 0;
    for (const Position& position : positions) {
        char fraction[32];
        const char* const texts[] = {position.symbol, position.shares, asFraction(fraction, position.price)};
        std::int32_t column = 0;
        for (const char* text : texts) {
            tarnString string(text);
            storeCell(data, 8 * column++, viewOf(string));
        }
        const double worth = strToDouble(position.shares) * position.price;
        storeCell(data, 30, amount(worth));
        total += worth;
    }
    const MOLTVARIANT sum = amount(total);
    data.storeData(totalItem, &sum, 0, 0);
}

// The value as it is printed here: amounts with two decimals, and the bullet as the terminal knows it.
tarnString printedForm(const MOLTVARIANT& value) {
    const std::unique_ptr<char[]> text(value.tag == tagDouble ? convertToString(&value, "%.2f")
                                                              : convertToString(&value));
    const bool bulleted = text[0] == '\x95';
    tarnString printed(bulleted ? "\xE2\x80\xA2" : "");
    printed.append(text.get() + (bulleted ? 1 : 0));
    return printed;
}

void printRows(const tarnPrintData& data, std::int32_t id) {
    std::int32_t printed = 0;
    for (std::int32_t i = 0; i < data.getNumMultiData(id); ++i) {
        const _MultiPrintStruct* const cell = data.getMultiPrintData(id, i);
        const std::int32_t column = cell->words[0];
        if (column == 0) printed = 0;
        if (column == 0 && i > 0) std::printf("\n");
        printed += std::printf("%*s%s", column - printed, "", printedForm(cell->value).text);
    }
    std::printf("\n");
}

void print(const tarnPrintData& data) {
    for (std::int32_t i = 0; const _PrintStruct* const item = data.getPrintData(i); ++i) {
        if (item->multiData != nullptr) {
            printRows(data, item->id);
            continue;
        }
        const tarnString text = printedForm(item->value);
        std::printf("%s%s\n", item->id == totalItem ? "Total " : "", text.text);
        if (item->extra == heading) std::printf("%.*s\n", text.length, rule);
    }
}

// --- The picture

// The client's keeper of brushes and of the device context that it draws with.
class DrawingTools : public ItarnResourceMgr {
  public:
    DrawingTools() : screen_(GetDC(nullptr)), memory_(CreateCompatibleDC(screen_)) {}
    DrawingTools(const DrawingTools&) = delete;
    DrawingTools& operator=(const DrawingTools&) = delete;
    ~DrawingTools() override {
        for (const auto& [color, brush] : brushes_) DeleteObject(brush);
        DeleteDC(memory_);
        ReleaseDC(nullptr, screen_);
    }

    HBRUSH getBrush(COLORREF color) override {
        HBRUSH& brush = brushes_[color];
        if (brush == nullptr) brush = CreateSolidBrush(color);
        return brush;
    }
    HDC getMemoryDC() override { return memory_; }
    [[nodiscard]] HDC screen() const { return screen_; }

  private:
    HDC screen_, memory_;
    std::map<COLORREF, HBRUSH> brushes_;
};

// Three bytes a pixel, red first, rows from the top.
std::vector<unsigned char> pixelsOf(const tarnBitmap& picture, HDC context) {
    std::vector<unsigned char> pixels;
    const HGDIOBJ earlier = SelectObject(context, picture.bitmap);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const COLORREF color = GetPixel(context, x, y);
            for (const int shift : {0, 8, 16}) pixels.push_back(static_cast<unsigned char>(color >> shift));
        }
    }
    SelectObject(context, earlier);
    return pixels;
}

bool paintPicture(const char* file) {
    DrawingTools tools;
    tarnBitmap picture;
    picture.bitmapMOLT(0, 320, 300, 0, tools.screen(), &tools);
    const std::vector<unsigned char> pixels = pixelsOf(picture, tools.getMemoryDC());
    const auto width = static_cast<std::size_t>(picture.width);
    std::printf("\n");
    for (const std::size_t row : {0U, 150U, 296U, 299U}) {
        const unsigned char* const pixel = &pixels[3 * width * row];
        std::printf("Row %3zu: red %3d, green %3d, blue %3d\n", row, pixel[0], pixel[1], pixel[2]);
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&image, file, 0, pixels.data(), 0, nullptr) != 0;
}

int fail(const char* what, const char* why) {
    std::fprintf(stderr, "client_window: %s %s\n", what, why);
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    const char* const file = argc > 1 ? argv[1] : "build/gradient.png";
    if (!showMenus()) return fail(menuFile, "can't be read as a menu");
    const SYSTEMTIME morning{1999, 11, 4, 18, 9, 5, 7, 0};
    tarn::setClock(&morning, &morning);
    tarnPrintData data;
    fillWithPositions(data);
    print(data);
    if (!paintPicture(file)) return fail(file, "can't be written");
    std::printf("The picture is in %s\n", file);
    if (tarn::openHandles() != 0) return fail("a handle", "is left open");
    std::printf("No handle left open\n");
    return 0;
}
