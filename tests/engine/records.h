#pragma once

// What the engine's tests share: values by short names, columns without gaps, and a record to compare with.

#include "engine/engine_data.h"
#include "tests/values.h"

namespace tarntest {

inline Owned whole(std::int32_t value) {
    return number(tagLong, value);
}

// A column with these cells in rows 0, 1, 2 and so on.
inline Owned rowsOf(const std::vector<Owned>& cells) {
    Keyed rows;
    for (const Owned& cell : cells) rows.emplace_back(static_cast<std::int32_t>(rows.size()), cell);
    return columnOf(rows);
}

// The whole record as one value, its columns sorted.
inline const MOLTVARIANT& contentOf(const tarnEngineData& record) {
    for (std::int32_t i = 0; i < record.fields->count; ++i)
        if (record.isMulti(i) != 0) record.fields->values->getAt(i)->payload.multi->nodes->sort();
    return *record.root;
}

inline void expectRecord(const tarnEngineData& record, const Keyed& fields, std::int32_t rows) {
    EXPECT_EQ(recordOf(fields), contentOf(record));
    EXPECT_EQ(record.numMulti, rows);
}

}  // namespace tarntest
