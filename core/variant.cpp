// Life of a tagged value: deep copy, release, size.  `visit` knows which member of the payload belongs to
// which tag, and hands it to a function with an overload for each type of member.  A value that is being
// copied is at every moment one that destroyContent can release, so that a copy that runs out of memory
// leaves nothing behind.
// Tests: tests/core/variant_test.cpp.

#include "core/variant.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "core/cells.h"
#include "core/string.h"
#include "core/value_owner.h"

using tarn::copyOf;

namespace {

using Blob = decltype(MOLTVARIANT::payload.blob);
using List = tarnTList<MOLTVARIANT*>;

constexpr std::size_t blockBytes = 16;

// Hands over the member of the payload that leads to memory of its own, or else the value itself.
template <class Value, class Function>
auto visit(Value& value, const Function& function) {
    auto& payload = value.payload;
    switch (value.tag) {
        case tagText: return function(payload.text);
        case tagWideText: return function(payload.wideText);
        case tagVector: return function(payload.vector);
        case tagBlob: return function(payload.blob);
        case tagBlock: return function(payload.block);
        case tagString: return function(payload.string);
        case tagList: return function(payload.list);
        case tagMulti: return function(payload.multi);
        case tagRecord: return function(payload.record);
        default: return function(value);
    }
}

// Each calls `function` with the elements of a container in their order, NULL for one that isn't there.

template <class Function>
void forEachElement(MOLTVARIANT* const* vector, const Function& function) {
    if (vector == nullptr) return;
    for (; *vector != nullptr; ++vector) function(*vector);
}

template <class Function>
void forEachElement(const List* list, const Function& function) {
    if (list == nullptr) return;
    for (std::int32_t i = 0; i < list->count; ++i) function(list->getAt(i));
}

template <class Function>
void forEachElement(const multiColumn* column, const Function& function) {
    if (column == nullptr || column->nodes == nullptr) return;
    const nodeList& nodes = *column->nodes;
    for (std::int32_t i = 0; i < nodes.count; ++i) function(nodes.cells[i]->value);
}

template <class Function>
void forEachElement(const tarnFieldList* record, const Function& function) {
    if (record == nullptr) return;
    for (std::int32_t i = 0; i < record->count; ++i) function(record->values->getAt(i));
}

// -------------------------------------------------------------------------------------------- deep copies

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

template <class Item>
Item* copyItems(const Item* source, std::size_t count) {
    auto* const copy = new Item[count];
    std::copy_n(source, count, copy);
    return copy;
}

std::size_t wideLength(const char16_t* text) {
    return std::char_traits<char16_t>::length(text);
}

// Each makes an empty value into a copy of what it is given, which isn't NULL.  A container becomes the
// target's before its elements are copied into it.

void copyTo(MOLTVARIANT& target, const MOLTVARIANT& plain) {
    target.assignContent(&plain);
}

void copyTo(MOLTVARIANT& target, const char* text) {
    target.payload.text = newstr(text);
}

void copyTo(MOLTVARIANT& target, const char16_t* text) {
    target.payload.wideText = copyItems(text, wideLength(text) + 1);
}

void copyTo(MOLTVARIANT& target, const Blob& blob) {
    const std::int32_t length = blob.data == nullptr ? 0 : std::max(blob.length, 0);
    target.payload.blob = {copyItems(blob.data, static_cast<std::size_t>(length)), length};
}

void copyTo(MOLTVARIANT& target, const unsigned char* block) {
    target.payload.block = copyItems(block, blockBytes);
}

void copyTo(MOLTVARIANT& target, const tarnString* string) {
    target.payload.string = new tarnString(string->text);
}

void copyTo(MOLTVARIANT& target, MOLTVARIANT* const* vector) {
    std::size_t length = 0;
    while (vector[length] != nullptr) ++length;
    MOLTVARIANT** next = target.payload.vector = new MOLTVARIANT*[length + 1]();
    target.tag = tagVector;
    forEachElement(vector, [&](const MOLTVARIANT* element) { *next++ = copyOf(element).release(); });
}

void copyTo(MOLTVARIANT& target, const List* source) {
    List* const list = target.payload.list = new List;
    target.tag = tagList;
    forEachElement(source, [list](const MOLTVARIANT* element) {
        auto copy = copyOf(element);
        list->add(copy.get());
        copy.release();
    });
}

void copyTo(MOLTVARIANT& target, const multiColumn* source) {
    multiColumn* const column = target.payload.multi = new multiColumn{nullptr};
    target.tag = tagMulti;
    column->nodes = new nodeList;
    if (source->nodes == nullptr) return;
    column->nodes->reserve(source->nodes->count);
    for (std::int32_t i = 0; i < source->nodes->count; ++i) {
        const nodeCell& cell = *source->nodes->cells[i];
        tarn::Cells::add(*column->nodes, cell.key.number).copyContent(cell.value);
    }
}

void copyTo(MOLTVARIANT& target, const tarnFieldList* source) {
    tarnFieldList* const record = target.payload.record = new tarnFieldList;
    target.tag = tagRecord;
    for (std::int32_t i = 0; i < source->count; ++i) {
        auto copy = copyOf(source->values->getAt(i));
        record->add(source->ids->getAt(i), copy.get());
        copy.release();
    }
}

bool isNull(const void* pointer) {
    return pointer == nullptr;
}
bool isNull(const Blob& /*blob*/) {
    return false;
}
bool isNull(const MOLTVARIANT& /*plain*/) {
    return false;
}

// ------------------------------------------------------------------------------------------------ release

void destroyValue(MOLTVARIANT* value) {
    const tarn::OwnedValue owner(value);
}

void release(const MOLTVARIANT& /*plain*/) {}
void release(const char* text) {
    delete[] text;
}
void release(const char16_t* text) {
    delete[] text;
}
void release(const Blob& blob) {
    delete[] blob.data;
}
void release(const unsigned char* block) {
    delete[] block;
}
void release(const tarnString* string) {
    delete string;
}

void release(MOLTVARIANT** vector) {
    forEachElement(vector, destroyValue);
    delete[] vector;
}

void release(List* list) {
    forEachElement(list, destroyValue);
    if (list != nullptr) delete list->array;
    delete list;
}

void release(multiColumn* column) {
    if (column != nullptr && column->nodes != nullptr) {
        tarn::Cells::destroyAll(*column->nodes);
        delete column->nodes;
    }
    delete column;
}

void release(tarnFieldList* record) {
    forEachElement(record, destroyValue);
    if (record != nullptr) {
        delete record->values;
        delete record->ids;
    }
    delete record;
}

// --------------------------------------------------------------------------------------------------- size

constexpr std::uint32_t countWord = 4;

// Sums wrap at 32 bits, the width that they have in a file.
template <class Container>
std::uint32_t sizeOfElements(const Container* container) {
    std::uint32_t size = 0;
    forEachElement(container, [&size](const MOLTVARIANT* element) {
        if (element != nullptr) size += static_cast<std::uint32_t>(element->sizeOfData());
    });
    return size;
}

std::uint32_t sizeOf(const MOLTVARIANT& plain) {
    return plain.tag == tagLong || plain.tag == tagNumber ? 4 : 8;
}
std::uint32_t sizeOf(const char* text) {
    return text == nullptr ? 0 : static_cast<std::uint32_t>(std::strlen(text) + 1);
}
std::uint32_t sizeOf(const char16_t* text) {
    return text == nullptr ? 0 : static_cast<std::uint32_t>(2 * wideLength(text) + 2);
}
std::uint32_t sizeOf(const Blob& blob) {
    return countWord + static_cast<std::uint32_t>(blob.length);
}
std::uint32_t sizeOf(const unsigned char* /*block*/) {
    return blockBytes;
}
std::uint32_t sizeOf(const tarnString* string) {
    return string == nullptr ? 0 : sizeOf(string->text);
}
std::uint32_t sizeOf(MOLTVARIANT* const* vector) {
    return sizeOfElements(vector);
}
template <class Container>
std::uint32_t sizeOf(const Container* container) {
    return countWord + sizeOfElements(container);
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
    CopyGuard guard(*this);
    visit(view, [this](const auto& content) {
        if (!isNull(content)) copyTo(*this, content);
    });
    tag = view.tag;
    guard.complete();
}

void MOLTVARIANT::destroyContent() {
    if (tag == tagEmpty || (tag == tagVector && payload.vector == nullptr)) return;
    visit(*this, [](const auto& content) { release(content); });
    assignContent(nullptr);
}

std::int32_t MOLTVARIANT::sizeOfData() const {
    return static_cast<std::int32_t>(visit(*this, [](const auto& content) { return sizeOf(content); }));
}
