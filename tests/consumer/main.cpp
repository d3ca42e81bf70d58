// A program of a client: calls into every folder of the library and holds one answer of each.

#include "tarnutil.h"

#include <cmath>
#include <cstdio>
#include <string_view>

namespace {

double optionValue() {
    double gamma, theta, vega, delta, value, implied;
    doCalculateBSValue(0, 100, 0.06, 0, 0.30, nullptr, nullptr, 0, 0, 0, 0, 0, 1, 10, 105, 120, &gamma,
                       &theta, &vega, &delta, &value, &implied);
    return value;
}

// A record goes through a file and comes back.
double savedPrice() {
    MOLTVARIANT price;
    price.tag = tagDouble;
    price.payload.doubleValue = 12.5;
    tarnEngineData record;
    record.storeMultiData(336, 0, &price, 0);
    tarnEngineData loaded;
    if (record.saveData("consumer.dat") != 1 || loaded.loadData("consumer.dat", loadReplace) != 1) return 0;
    loaded.getMultiData(336, 0, &price);
    return price.payload.doubleValue;
}

}  // namespace

int main() {
    unsigned char decoded[9];
    char shown[8];
    const struct {
        const char* folder;
        bool holds;
    } answers[] = {
        {"core", tarnString("12 1/2").isValidPrice() == 1},
        {"engine", savedPrice() == 12.5},
        {"store", UUdecode("aGVsbG8=", decoded, 0, 1) == 5},
        {"options", std::fabs(optionValue() - 10.94348) < 0.00001},
        {"calendar", isValidTradeDate("112599") == 0 && isValidTradeDate("112699") == 1},
        {"fintext", std::string_view(asFraction(shown, 12.375)) == "12 3/8"},
        {"present", tarnPrintData().getNumMultiData(7) == -1},
        {"platform", lstrcmpiA("Tarn", "tARN") == 0},
    };
    int wrong = 0;
    for (const auto& [folder, holds] : answers) {
        if (holds) continue;
        std::printf("%s: a wrong answer\n", folder);
        ++wrong;
    }
    return wrong;
}
