// The record and its single fields.  `root` and `fields` are one thing twice: the payload of the value `root`
// is `fields`.  A search is a scan of the ids with a memory of one field in front, which every use checks
// against the list, so that nothing ever has to invalidate it.
// Tests: tests/engine/engine_data_test.cpp.

#include "engine/engine_data.h"

#include <memory>
#include <utility>

#include "core/string.h"
#include "core/value_owner.h"
#include "engine/column.h"
#include "engine/field_lookup.h"

using tarn::copyOf;
using tarn::OwnedValue;

namespace {

constexpr std::int32_t rowCountField = 185;

struct NewRecord {
    OwnedValue root;  // owns the fields
    tarnFieldList* fields;
};

NewRecord emptyRecord() {
    NewRecord record{OwnedValue(new MOLTVARIANT), nullptr};
    record.fields = record.root->payload.record = new tarnFieldList;
    record.root->tag = tagRecord;
    return record;
}

// Left in a value's place, it notes when it is destroyed, and so whether a tree of values held that place.
class Marker : public tarnString {
  public:
    explicit Marker(bool& isDestroyed) : isDestroyed_(isDestroyed) {}
    Marker(const Marker&) = delete;
    Marker& operator=(const Marker&) = delete;
    ~Marker() override { isDestroyed_ = true; }

  private:
    bool& isDestroyed_;
};

// Gives a value's content to the root, and releases the value.  It may be any part of the root: its content
// leaves first, and a marker in its place notes whether the root's old content takes the place along.
void takeOver(MOLTVARIANT*& root, MOLTVARIANT* value) {
    bool wasPart = false;
    auto marker = std::make_unique<Marker>(wasPart);
    if (root == nullptr) root = new MOLTVARIANT;
    const MOLTVARIANT content = *value;
    value->tag = tagString;
    value->payload.string = marker.release();
    root->destroyContent();
    root->assignContent(&content);
    if (!wasPart) tarn::ValueDeleter()(value);
}

bool isColumn(const MOLTVARIANT* value) {
    return value->tag == tagMulti;
}

}  // namespace

tarnEngineParam::tarnEngineParam(const tarnEngineParam* source) {
    if (source != nullptr) *this = *source;
}

tarnEngineParam::~tarnEngineParam() = default;

tarnEngineData::tarnEngineData() {
    NewRecord record = emptyRecord();
    fields = record.fields;
    root = record.root.release();
}

tarnEngineData::tarnEngineData(tarnEngineData* source) : tarnEngineData() {
    if (source == nullptr) return;
    for (std::int32_t i = 0; source->fields != nullptr && i < source->fields->count; ++i) {
        std::int32_t id = 0;
        MOLTVARIANT* value = nullptr;
        source->fields->getAt(i, id, value);
        OwnedValue copy = copyOf(value);
        fields->add(id, copy.get());
        copy.release();
    }
    numMulti = source->numMulti;
    dataType = source->dataType;
    descriptions = source->descriptions;
}

tarnEngineData::~tarnEngineData() {
    releaseAll();
}

void tarnEngineData::releaseAll() {
    if (fields == nullptr) return;
    root->destroyContent();
    delete root;
    root = nullptr;
    fields = nullptr;
    numMulti = 0;
}

void tarnEngineData::makeEmpty() {
    NewRecord record = emptyRecord();
    releaseAll();
    fields = record.fields;
    root = record.root.release();
}

std::int32_t tarnEngineData::getId(std::int32_t index) const {
    if (fields == nullptr) return -1;
    std::int32_t id = -1;
    MOLTVARIANT* value = nullptr;
    fields->getAt(index, id, value);
    return value == nullptr ? -1 : id;
}

std::int32_t tarnEngineData::getData(std::int32_t id, MOLTVARIANT* out) {
    const std::int32_t index = findField(fields, id, 0);
    if (out != nullptr) *out = index < 0 ? MOLTVARIANT() : *fields->values->data[index];
    return index;
}

void tarnEngineData::storeData(std::int32_t id, const MOLTVARIANT* value) {
    if (fields == nullptr) return;
    const std::int32_t index = findField(fields, id, 0);
    OwnedValue copy = copyOf(value);
    if (index >= 0) {
        // `copy` destroys the old content, after the new one is in place: `value` may be a part of it.
        std::swap(*fields->values->getAt(index), *copy);
    } else {
        fields->add(id, copy.get());
        copy.release();
    }
}

void tarnEngineData::removeData(std::int32_t id) {
    const std::int32_t index = findField(fields, id, 0);
    if (index < 0) return;
    const OwnedValue removed(fields->values->removeAt(index));
    fields->ids->removeAt(index);
    --fields->count;
}

int tarnEngineData::isEmpty() const {
    return fields == nullptr || fields->count == 0 ? 1 : 0;
}

int tarnEngineData::isMulti(std::int32_t index) const {
    if (fields == nullptr) return 0;
    std::int32_t id = -1;
    MOLTVARIANT* value = nullptr;
    fields->getAt(index, id, value);
    return value != nullptr && isColumn(value) ? 1 : 0;
}

MOLTVARIANT* tarnEngineData::getRootData() {
    return root;
}

void tarnEngineData::setRootData(MOLTVARIANT* value) {
    if (value == nullptr || value->tag != tagRecord || value->payload.record == nullptr) return;
    if (value != root) {
        takeOver(root, value);
        fields = root->payload.record;
    }
    countRows();
    if (numMulti < 1) return;
    MOLTVARIANT rows;
    rows.tag = tagShort;
    rows.payload.shortValue = static_cast<std::int16_t>(numMulti);
    storeData(rowCountField, &rows);
}

void tarnEngineData::countRows() {
    numMulti = 0;
    for (std::int32_t i = 0; i < fields->count; ++i) {
        nodeList* const column = columnAt(i);
        if (column == nullptr || column->count == 0) continue;
        raiseNumMulti(tarn::lastRow(*column));
    }
}
