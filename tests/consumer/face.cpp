// A program of a client with the C++ headers: one answer of each, from values to files.

#include "tarn.h"

#include <cstdio>

namespace {

bool readsBack() {
    const tarn::Value price("12 1/2");
    const tarn::Value copy = price.clone();
    return price == copy && price.view().number() == 12.5 && !price.view().get<double>();
}

bool loadsAMenu() {
    std::FILE* const file = std::fopen("face.mnu", "w");
    if (file == nullptr) return false;
    std::fputs("POPUP,Orders,7,MENUITEM,SEPARATOR", file);
    std::fclose(file);
    tarn::MenuTree menu;
    const tarn::LoadReport report = menu.load("face.mnu");
    return report.error == tarn::LoadError::truncated && menu.root().label() == "Orders" &&
           report.message("face.mnu") == "face.mnu: byte 0 of 33: item 0: the file ends within it";
}

}  // namespace

int main() {
    const bool hasDate = tarn::parseDate("11/30/99") == tarn::Date(std::chrono::year(1999) / 11 / 30);
    tarn::Ini ini("face");
    const bool isSet = ini.set("window", "width", 640) && ini.number("window", "width").value == 640;
    return readsBack() && hasDate && loadsAMenu() && isSet ? 0 : 1;
}
