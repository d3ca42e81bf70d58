// Print items: records that own a deep copy of their value, and rows that own their texts and blobs alone.  A
// row finds its container by an index of the first item of each id.
// Tests: tests/present/print_data_test.cpp.

#include "present/print_data.h"

#include <cstdio>
#include <map>
#include <memory>
#include <string_view>

#include "calendar/market_calendar.h"
#include "core/value_text.h"
#include "platform/win32.h"

// The item that decides about the rows of its id.
struct tarn::PrintIndex {
    std::map<std::int32_t, _PrintStruct*> byId;
};

namespace {

using tarn::printBullet;

constexpr std::string_view bullet = "\x95 ";

MOLTVARIANT newText(std::string_view front, std::string_view text) {
    MOLTVARIANT value;
    value.payload.text = new char[front.size() + text.size() + 1];
    value.tag = tagText;
    char* const behindFront = value.payload.text + front.copy(value.payload.text, front.size());
    behindFront[text.copy(behindFront, text.size())] = '\0';
    return value;
}

// `none` takes the place of a text of NULL.
MOLTVARIANT copyText(const MOLTVARIANT& source, std::int32_t flags, std::string_view none) {
    const char* const text = tarn::textOf(source);
    const bool bulleted = (flags & printBullet) != 0;
    if (text == nullptr) return bulleted ? newText(bullet, "") : newText("", none);
    return newText(bulleted ? bullet : "", text);
}

bool rowOwnsValue(const MOLTVARIANT& value) {
    return value.tag == tagText || value.tag == tagBlob;
}

struct RowDeleter {
    void operator()(_MultiPrintStruct* row) const {
        if (rowOwnsValue(row->value)) row->value.destroyContent();
        delete row;
    }
};

template <class Record, class Deleter>
void releaseList(tarnTList<Record*>* list, Deleter deleter) {
    for (std::int32_t i = 0; i < list->count; ++i) deleter(list->getAt(i));
    delete list->array;
    delete list;
}

struct ItemDeleter {
    void operator()(_PrintStruct* item) const {
        if (item->multiData != nullptr) releaseList(item->multiData, RowDeleter{});
        item->value.destroyContent();
        delete item;
    }
};

using Item = std::unique_ptr<_PrintStruct, ItemDeleter>;
using Row = std::unique_ptr<_MultiPrintStruct, RowDeleter>;

Item newItem(std::int32_t id, std::int32_t flags, std::int32_t extra) {
    Item item(new _PrintStruct);
    item->id = id;
    item->flags = flags;
    item->extra = extra;
    return item;
}

// Answers the record, which belongs to the list from now on; NULL for a list that is full.
template <class Record, class Deleter>
Record* append(tarnTList<Record*>& list, std::unique_ptr<Record, Deleter> record) {
    const std::int32_t place = list.count;
    list.add(record.get());
    return list.getAt(place) == record.get() ? record.release() : nullptr;
}

// Takes memory for the index first, so that an item is in both or in none.
void append(tarnTList<_PrintStruct*>& list, tarn::PrintIndex& index, Item item) {
    std::map<std::int32_t, _PrintStruct*> entry{{item->id, item.get()}};
    if (append(list, std::move(item)) != nullptr) index.byId.merge(entry);  // an earlier item of the id stays
}

}  // namespace

tarnPrintData::tarnPrintData() : items_(nullptr), firstItems_(nullptr) {
    auto index = std::make_unique<tarn::PrintIndex>();
    items_ = new tarnTList<_PrintStruct*>;
    firstItems_ = index.release();
}

tarnPrintData::~tarnPrintData() {
    releaseList(items_, ItemDeleter{});
    delete firstItems_;
}

void tarnPrintData::storeData(std::int32_t id, const MOLTVARIANT* value, std::int32_t flags,
                              std::int32_t extra) {
    Item item = newItem(id, flags, extra);
    if (value != nullptr && tarn::hasTextForm(value->tag)) {
        item->value = copyText(*value, flags, "");
    } else {
        item->value.copyContent(value);
    }
    if (item->value.tag == tagPlain9 && (flags & tarn::printMultiData) != 0) {
        item->multiData = new tarnTList<_MultiPrintStruct*>;
    }
    append(*items_, *firstItems_, std::move(item));
}

void tarnPrintData::storeDateTime(std::int32_t flags) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    char date[11];
    getCurrentDate(date, 1);
    char text[128];
    std::snprintf(text, sizeof text, "%s  %d:%02d:%02d", date, now.wHour, now.wMinute, now.wSecond);
    Item item = newItem(0, flags, 0);
    item->value = newText("", text);
    append(*items_, *firstItems_, std::move(item));
}

void tarnPrintData::storeMultiData(const _MultiPrintStruct* record, const MOLTVARIANT* value) {
    if (record == nullptr || value == nullptr) return;
    tarnTList<_MultiPrintStruct*>* const rows = findMultiData(record->id);
    if (rows == nullptr) return;
    Row row(new _MultiPrintStruct(*record));
    row->value.initContent(nullptr);  // the record's own value stays the caller's
    if (tarn::hasTextForm(value->tag)) {
        row->value = copyText(*value, record->flags, " ");
    } else if (value->tag == tagBlob) {
        row->value.copyContent(value);
    } else {
        row->value.assignContent(value);
    }
    append(*rows, std::move(row));
}

_PrintStruct* tarnPrintData::getPrintData(std::int32_t index) const {
    return items_->getAt(index);
}

_MultiPrintStruct* tarnPrintData::getMultiPrintData(std::int32_t id, std::int32_t index) const {
    const tarnTList<_MultiPrintStruct*>* const rows = findMultiData(id);
    return rows == nullptr ? nullptr : rows->getAt(index);
}

std::int32_t tarnPrintData::getNumMultiData(std::int32_t id) const {
    const tarnTList<_MultiPrintStruct*>* const rows = findMultiData(id);
    return rows == nullptr ? -1 : rows->count;
}

tarnTList<_MultiPrintStruct*>* tarnPrintData::findMultiData(std::int32_t id) const {
    const auto found = firstItems_->byId.find(id);
    return found == firstItems_->byId.end() ? nullptr : found->second->multiData;
}
