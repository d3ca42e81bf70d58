// Life of a tagged value: deep copy, release, size.  The one idea: a value that is being copied is at every
// moment one that destroyContent can release, so that a copy that runs out of memory leaves nothing behind.

#include "core/variant.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "core/string.h"
#include "core/value_owner.h"

using tarn::copyOf;

namespace {

constexpr std::size_t blockBytes = 16;

// Releases a half-made copy unless it is completed.
class CopyGuard {
  public:
    explicit CopyGuard(MOLTVARIANT& value) : value_(&value) {}
    CopyGuard(const CopyGuard&) = delete;
    CopyGuard& operator=(const CopyGuard&) = delete;
    ~CopyGuard() {
        if (value_ != nullptr) value_->destroyContent();
    }
    void complete() { value_ = nullptr; }

  private:
    MOLTVARIANT* value_;
};

std::size_t wideLength(const char16_t* text) {
    return std::char_traits<char16_t>::length(text);
}

std::size_t vectorLength(MOLTVARIANT* const* vector) {
    std::size_t length = 0;
    while (vector[length] != nullptr) ++length;
    return length;
}

unsigned char* copyBytes(const unsigned char* source, std::size_t count) {
    auto* const copy = new unsigned char[count];
    std::copy_n(source, count, copy);
    return copy;
}

char16_t* copyWideText(const char16_t* source) {
    const std::size_t units = wideLength(source) + 1;
    auto* const copy = new char16_t[units];
    std::copy(source, source + units, copy);
    return copy;
}

// Each fills `target`, whose container exists and is empty, element by element.

void copyElements(MOLTVARIANT** target, MOLTVARIANT* const* source, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) target[i] = copyOf(source[i]).release();
}

void copyElements(tarnTList<MOLTVARIANT*>& target, const tarnTList<MOLTVARIANT*>& source) {
    for (std::int32_t i = 0; i < source.count; ++i) {
        auto element = copyOf(source.getAt(i));
        target.add(element.get());
        element.release();
    }
}

void copyElements(nodeList& target, const nodeList& source) {
    target.reserve(source.count);
    for (std::int32_t i = 0; i < source.count; ++i) {
        auto value = copyOf(source.cells[i]->value);
        target.add(value.get(), source.cells[i]->key.number);
        value.release();
    }
}

void copyElements(tarnFieldList& target, const tarnFieldList& source) {
    for (std::int32_t i = 0; i < source.count; ++i) {
        auto value = copyOf(source.values->getAt(i));
        target.add(source.ids->getAt(i), value.get());
        value.release();
    }
}

void destroyValue(MOLTVARIANT* value) {
    const tarn::OwnedValue owner(value);
}

void destroyVector(MOLTVARIANT** vector) {
    for (MOLTVARIANT** entry = vector; *entry != nullptr; ++entry) destroyValue(*entry);
    delete[] vector;
}

void destroyList(tarnTList<MOLTVARIANT*>* list) {
    for (std::int32_t i = 0; i < list->count; ++i) destroyValue(list->getAt(i));
    delete list->array;
    delete list;
}

void destroyColumn(multiColumn* column) {
    if (nodeList* const nodes = column->nodes; nodes != nullptr) {
        for (std::int32_t i = 0; i < nodes->count; ++i) destroyValue(nodes->cells[i]->value);
        nodes->release();
        delete nodes;
    }
    delete column;
}

void destroyRecord(tarnFieldList* record) {
    for (std::int32_t i = 0; i < record->count; ++i) destroyValue(record->values->getAt(i));
    delete record->values;
    delete record->ids;
    delete record;
}

std::uint32_t sizeOf(const MOLTVARIANT* value) {
    return value == nullptr ? 0 : static_cast<std::uint32_t>(value->sizeOfData());
}

// Sums wrap at 32 bits, the width that they have in a file.
std::uint32_t sizeOfElements(const MOLTVARIANT& value) {
    std::uint32_t size = 0;
    switch (value.tag) {
        case tagVector:
            for (MOLTVARIANT* const* entry = value.payload.vector; *entry != nullptr; ++entry)
                size += sizeOf(*entry);
            break;
        case tagList:
            for (std::int32_t i = 0; i < value.payload.list->count; ++i)
                size += sizeOf(value.payload.list->getAt(i));
            break;
        case tagMulti:
            if (const nodeList* const nodes = value.payload.multi->nodes; nodes != nullptr) {
                for (std::int32_t i = 0; i < nodes->count; ++i) size += sizeOf(nodes->cells[i]->value);
            }
            break;
        default:
            for (std::int32_t i = 0; i < value.payload.record->count; ++i) {
                size += sizeOf(value.payload.record->values->getAt(i));
            }
            break;
    }
    return size;
}

// A pointer form that holds no pointer: nothing to copy, measure or release.
bool holdsNothing(const MOLTVARIANT& value) {
    switch (value.tag) {
        case tagText: return value.payload.text == nullptr;
        case tagWideText: return value.payload.wideText == nullptr;
        case tagVector: return value.payload.vector == nullptr;
        case tagBlock: return value.payload.block == nullptr;
        case tagString: return value.payload.string == nullptr;
        case tagList: return value.payload.list == nullptr;
        case tagMulti: return value.payload.multi == nullptr;
        case tagRecord: return value.payload.record == nullptr;
        default: return false;
    }
}

}  // namespace

void MOLTVARIANT::initContent(const MOLTVARIANT* source) {
    copyContent(source);
}

void MOLTVARIANT::assignContent(const MOLTVARIANT* source) {
    *this = source == nullptr ? MOLTVARIANT() : *source;
}

void MOLTVARIANT::copyContent(const MOLTVARIANT* source) {
    if (source == nullptr) return assignContent(nullptr);
    const MOLTVARIANT view = *source;  // the source may be this value
    assignContent(nullptr);
    if (holdsNothing(view)) {
        tag = view.tag;
        return;
    }
    CopyGuard guard(*this);
    switch (view.tag) {
        case tagText: payload.text = newstr(view.payload.text); break;
        case tagWideText: payload.wideText = copyWideText(view.payload.wideText); break;
        case tagVector: {
            const std::size_t length = vectorLength(view.payload.vector);
            payload.vector = new MOLTVARIANT*[length + 1]();
            tag = tagVector;
            copyElements(payload.vector, view.payload.vector, length);
            break;
        }
        case tagBlob:
            if (view.payload.blob.data != nullptr)
                payload.blob.length = std::max(view.payload.blob.length, 0);
            payload.blob.data =
                copyBytes(view.payload.blob.data, static_cast<std::size_t>(payload.blob.length));
            break;
        case tagBlock: payload.block = copyBytes(view.payload.block, blockBytes); break;
        case tagString: payload.string = new tarnString(view.payload.string->text); break;
        case tagList:
            payload.list = new tarnTList<MOLTVARIANT*>;
            tag = tagList;
            copyElements(*payload.list, *view.payload.list);
            break;
        case tagMulti:
            payload.multi = new multiColumn{nullptr};
            tag = tagMulti;
            payload.multi->nodes = new nodeList;
            if (view.payload.multi->nodes != nullptr)
                copyElements(*payload.multi->nodes, *view.payload.multi->nodes);
            break;
        case tagRecord:
            payload.record = new tarnFieldList;
            tag = tagRecord;
            copyElements(*payload.record, *view.payload.record);
            break;
        default: assignContent(&view); break;
    }
    tag = view.tag;
    guard.complete();
}

void MOLTVARIANT::destroyContent() {
    if (tag == tagEmpty || (tag == tagVector && payload.vector == nullptr)) return;
    if (!holdsNothing(*this)) {
        switch (tag) {
            case tagText: delete[] payload.text; break;
            case tagWideText: delete[] payload.wideText; break;
            case tagVector: destroyVector(payload.vector); break;
            case tagBlob: delete[] payload.blob.data; break;
            case tagBlock: delete[] payload.block; break;
            case tagString: delete payload.string; break;
            case tagList: destroyList(payload.list); break;
            case tagMulti: destroyColumn(payload.multi); break;
            case tagRecord: destroyRecord(payload.record); break;
            default: break;
        }
    }
    assignContent(nullptr);
}

std::int32_t MOLTVARIANT::sizeOfData() const {
    constexpr std::uint32_t countWord = 4;
    const bool nothing = holdsNothing(*this);
    std::uint32_t size = 8;
    switch (tag) {
        case tagLong:
        case tagNumber: size = 4; break;
        case tagText: size = nothing ? 0 : static_cast<std::uint32_t>(std::strlen(payload.text) + 1); break;
        case tagString:
            size = nothing ? 0 : static_cast<std::uint32_t>(std::strlen(payload.string->text) + 1);
            break;
        case tagWideText:
            size = nothing ? 0 : static_cast<std::uint32_t>(2 * wideLength(payload.wideText) + 2);
            break;
        case tagVector: size = nothing ? 0 : sizeOfElements(*this); break;
        case tagBlob: size = static_cast<std::uint32_t>(payload.blob.length) + countWord; break;
        case tagBlock: size = blockBytes; break;
        case tagList:
        case tagMulti:
        case tagRecord: size = countWord + (nothing ? 0 : sizeOfElements(*this)); break;
        default: break;
    }
    return static_cast<std::int32_t>(size);
}
