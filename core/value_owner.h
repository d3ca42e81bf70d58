#pragma once

// Internal: the owner of a value made by new until a container takes it.

#include <memory>

#include "core/variant.h"

namespace tarn {

struct ValueDeleter {
    void operator()(MOLTVARIANT* value) const {
        value->destroyContent();
        delete value;
    }
};

using OwnedValue = std::unique_ptr<MOLTVARIANT, ValueDeleter>;

// A deep copy; of NULL an empty value.
inline OwnedValue copyOf(const MOLTVARIANT* source) {
    return OwnedValue(new MOLTVARIANT(source));
}

}  // namespace tarn
