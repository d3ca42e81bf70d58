#pragma once

// A record for the engine's tests: filled in one call, and shown as one text.

#include "engine/engine_data.h"
#include "tests/values.h"

namespace tarntest {

// What a record holds: "field=value column[row:value,...] rows", in order; a row without a value has a -.
inline std::string shown(const tarnEngineData& record) {
    const auto textOf = [](const MOLTVARIANT* value) {
        tarnString content("-");
        if (value != nullptr) content.assign(value);
        return std::string(content.text);
    };
    std::string out;
    for (std::int32_t i = 0; i < record.fields->count; ++i) {
        const MOLTVARIANT* const value = record.fields->values->getAt(i);
        const bool column = value != nullptr && value->tag == tagMulti;
        out += std::to_string(record.fields->ids->getAt(i)) + (column ? "[" : "=" + textOf(value));
        if (column) value->payload.multi->nodes->sort();
        for (std::int32_t c = 0; column && c < value->payload.multi->nodes->count; ++c) {
            const nodeCell& cell = *value->payload.multi->nodes->cells[c];
            out += std::to_string(cell.key.number) + ":" + textOf(cell.value) + ",";
        }
        out += column ? "] " : " ";
    }
    return out + std::to_string(record.numMulti);
}

inline void storeLong(tarnEngineData& record, std::int32_t id, std::int32_t row, std::int32_t value,
                      int appendOnly = 0) {
    const Owned cell = number(tagLong, value);
    record.storeMultiData(id, row, &cell, appendOnly);
}

}  // namespace tarntest
