#pragma once

// Internal: the text that a tagged value holds.  Users want convertToString in core/variant.h.

#include "core/string.h"
#include "core/variant.h"

namespace tarn {

inline bool hasTextForm(std::int32_t tag) {
    return tag == tagText || tag == tagString;
}

// The text of a value of tag 10 or 17, NULL for one without a text and for every other tag.
// Owner: the value.
inline const char* textOf(const MOLTVARIANT& value) {
    if (value.tag == tagText) return value.payload.text;
    if (value.tag == tagString && value.payload.string != nullptr) return value.payload.string->text;
    return nullptr;
}

}  // namespace tarn
