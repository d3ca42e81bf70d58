// The amount of a fund, from the record's fields in their order of rank.
// Tests: tests/fintext/patterned_text_test.cpp.

#include <cstring>

#include "core/number_text.h"
#include "core/string.h"
#include "core/variant.h"
#include "engine/engine_data.h"
#include "fintext/financial_text.h"

namespace {

constexpr struct {
    std::int32_t field;
    eFundUnits units;
} amountFields[] = {{1664, eFundUnitsPrimary}, {595, eFundUnitsOther}, {1750, eFundUnitsOther}};

}  // namespace

eFundUnits getDollarsOrShares(tarnEngineData* record, char* target) {
    if (record == nullptr || target == nullptr) return eFundUnitsNone;
    for (const auto& [field, units] : amountFields) {
        MOLTVARIANT value;  // a view
        if (record->getData(field, &value) == -1) continue;
        tarnString text;
        text.assign(&value);
        if (tarn::readDouble(text.text) > 0) {
            std::strcpy(target, text.text);
            return units;
        }
    }
    return eFundUnitsNone;
}
