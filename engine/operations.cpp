// What a record asks of the client's dictionary: the types of its fields and their descriptions.
// Tests: tests/engine/operations_test.cpp.

#include "core/exception.h"
#include "core/value_owner.h"
#include "core/value_text.h"
#include "engine/engine_data.h"

using tarn::OwnedValue;

namespace {

constexpr std::ptrdiff_t descriptionOffset = 71;  // in the dictionary's record

// The tag that the dictionary's type code means.
std::int32_t tagOf(std::int16_t typeCode) {
    switch (typeCode) {
        case tarn::fieldShort: return tagShort;
        case tarn::fieldLong:
        case tarn::fieldSecondLong: return tagLong;
        case tarn::fieldCharacter: return tagChar;
        case tarn::fieldFloat: return tagFloat;
        case tarn::fieldDouble: return tagDouble;
        default: return tagText;
    }
}

}  // namespace

void tarnEngineData::setDataType(eOperation operation) {
    dataType = operation;
}

void tarnEngineData::convertOperation(tarnGlobalInterfaces* host) {
    tarnFieldDictionary* const dictionary = host == nullptr ? nullptr : host->fieldDictionary();
    if (dictionary == nullptr || fields == nullptr) return;
    for (std::int32_t i = 0; i < fields->count; ++i) {
        std::int32_t id = 0;
        MOLTVARIANT* value = nullptr;
        fields->getAt(i, id, value);
        const char* const text = value == nullptr ? nullptr : tarn::textOf(*value);
        if (text == nullptr) continue;
        OwnedValue converted(new MOLTVARIANT);
        converted->payload.text = newstr(text);
        converted->tag = tagText;
        convertFromString(converted.get(), tagOf(static_cast<std::int16_t>(dictionary->getFieldType(id))));
        std::swap(*value, *converted);
    }
}

const char* tarnEngineData::getDataDescription(std::int32_t id) {
    const void* const record = descriptions == nullptr ? nullptr : descriptions->getFieldRecord(id);
    return record == nullptr ? nullptr : static_cast<const char*>(record) + descriptionOffset;
}
