#pragma once

// Internal: how all operations of a record find a field; included by the sources that do.  Users want
// engine/engine_data.h.

#include <algorithm>

#include "engine/engine_data.h"

// The field remembered from the last search is tried first, and checked against the list, so that nothing
// ever has to forget it.
inline std::int32_t tarnEngineData::findField(const tarnFieldList* list, std::int32_t id, int multi) {
    if (list == nullptr) return -1;
    const std::int32_t* const ids = list->ids->data;
    const auto matches = [&](std::int32_t index) {
        const MOLTVARIANT* const value = list->values->data[index];
        return ids[index] == id && value != nullptr && (value->tag == tagMulti) == (multi != 0);
    };
    if (id == lastId && lastIndex >= 0 && lastIndex < list->count && matches(lastIndex)) return lastIndex;
    const std::int32_t* const end = ids + list->count;
    for (const std::int32_t* slot = std::find(ids, end, id); slot != end;
         slot = std::find(slot + 1, end, id)) {
        const auto index = static_cast<std::int32_t>(slot - ids);
        if (!matches(index)) continue;
        lastId = id;
        lastIndex = index;
        return index;
    }
    return -1;
}

namespace tarn {

// The cells of a column, NULL for one that a client built without them.
inline nodeList* cellsOf(const MOLTVARIANT& column) {
    const multiColumn* const multi = column.payload.multi;
    return multi == nullptr ? nullptr : multi->nodes;
}

}  // namespace tarn

// The cells of the field at an index, NULL if it is no column.
inline nodeList* tarnEngineData::columnAt(std::int32_t index) const {
    const MOLTVARIANT* const value = fields == nullptr ? nullptr : fields->values->getAt(index);
    return value == nullptr || value->tag != tagMulti ? nullptr : tarn::cellsOf(*value);
}
