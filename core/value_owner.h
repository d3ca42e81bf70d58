#pragma once

// Internal: the owners of a value, or of the content of one, until a container takes it.

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

// A value that destroys its content at the end, unless another one has taken it in exchange for its own.
struct OwnedContent : MOLTVARIANT {
    OwnedContent() = default;
    // A deep copy; of NULL an empty value.
    explicit OwnedContent(const MOLTVARIANT* source) : MOLTVARIANT(source) {}
    OwnedContent(const OwnedContent&) = delete;
    OwnedContent& operator=(const OwnedContent&) = delete;
    ~OwnedContent() {
        if (tag != tagEmpty) destroyContent();
    }
};

// A deep copy; of NULL an empty value.
inline OwnedValue copyOf(const MOLTVARIANT* source) {
    return OwnedValue(new MOLTVARIANT(source));
}

}  // namespace tarn
