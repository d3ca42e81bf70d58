// A program of a client with the C++ headers: one answer of each, from values to files.

#include "tarn.h"

namespace {

bool readsBack() {
    const tarn::Value price("12 1/2");
    const tarn::Value copy = price.clone();
    return price == copy && price.view().number() == 12.5 && !price.view().get<double>();
}

}  // namespace

int main() {
    const bool hasDate = tarn::parseDate("11/30/99") == tarn::Date(std::chrono::year(1999) / 11 / 30);
    tarn::Ini ini("face");
    const bool isSet = ini.set("window", "width", 640) && ini.number("window", "width").value == 640;
    const bool isMissing = tarn::MenuTree().load("face.mnu").error == tarn::LoadError::cantOpen;
    return readsBack() && hasDate && isMissing && isSet ? 0 : 1;
}
