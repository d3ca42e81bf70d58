#pragma once

// A record for the engine's tests: filled in one call, and shown as one text.

#include "engine/engine_data.h"
#include "tests/values.h"

namespace tarntest {

// What a record holds and how many rows, its columns sorted: "1=10:abc,7=21:[0=3:5,4=3:6] 5".
inline std::string shown(const tarnEngineData& record) {
    for (std::int32_t i = 0; i < record.fields->count; ++i)
        if (record.isMulti(i) != 0) record.fields->values->getAt(i)->payload.multi->nodes->sort();
    const std::string fields = describe(record.root);
    return fields.substr(4, fields.size() - 5) + " " + std::to_string(record.numMulti);
}

inline void storeLong(tarnEngineData& record, std::int32_t id, std::int32_t row, std::int32_t value,
                      int appendOnly = 0) {
    const Owned cell = number(tagLong, value);
    record.storeMultiData(id, row, &cell, appendOnly);
}

}  // namespace tarntest
