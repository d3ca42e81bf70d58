#pragma once

/// @file
/// The list of items behind a print-out.  A screen stores items and the rows of its tables; code outside this
/// library walks the list and reads the records.  Nothing is formatted or printed here: values stay values,
/// but a text is always a value of tag 10.
///
///     tarnPrintData data;
///     data.storeData(7, &title, 0x2000, 0);   // getPrintData(0)->value is a text with a bullet in front
///     data.storeData(8, &marker, 0x40, 0);    // marker has tag 9: a container of rows
///     data.storeMultiData(&row, &cell);       // row.id is 8: getNumMultiData(8) is 1
///
/// A consumer counts up from 0 until getPrintData answers NULL.
///
/// Threads: no shared state, and one object belongs to one thread at a time.

#include <cstdint>

#include "core/export.h"
#include "core/variant.h"

namespace tarn {

// The bits of `flags` that mean something here; all bits reach the consumer.
constexpr std::int32_t printMultiData = 0x40;  ///< an item of tag 9 holds rows
constexpr std::int32_t printBullet = 0x2000;   ///< the text gets a bullet in front, the bytes 0x95 0x20

struct PrintIndex;

}  // namespace tarn

/// A row of a container.
struct _MultiPrintStruct {
    std::int32_t id = 0;     ///< the container's
    std::int32_t flags = 0;  ///< only printBullet is read
    /// Tags 10 and 15 are the record's own; any other value is a view of what the caller stored.
    MOLTVARIANT value;
    std::int32_t words[4] = {};  ///< from the caller to the consumer
};

/// An item.  The record owns its value and its rows.
struct _PrintStruct {
    std::int32_t id = 0;     ///< the item's name for rows; 0 for the date and time
    std::int32_t flags = 0;  ///< as they were stored
    std::int32_t extra = 0;  ///< from the caller to the consumer
    MOLTVARIANT value;
    tarnTList<_MultiPrintStruct*>* multiData = nullptr;  ///< NULL for an item that is no container
};

/// One list of items.
class TARN_EXPORT tarnPrintData {
  public:
    /// An empty list.
    tarnPrintData();
    tarnPrintData(const tarnPrintData&) = delete;
    tarnPrintData& operator=(const tarnPrintData&) = delete;
    ~tarnPrintData();

    /// Appends an item with a deep copy of the value.  Texts of tags 10 and 17 become tag 10, with the bullet
    /// in front if `flags` has printBullet.  Tag 9 with printMultiData makes a container without rows.
    /// - Bad input: NULL is stored as an empty value, a text of NULL as an empty text.
    void storeData(std::int32_t id, const MOLTVARIANT* value, std::int32_t flags, std::int32_t extra);

    /// Appends an item of id 0 with today's date (Coordinated Universal Time) and the local time as a text:
    /// 11/18/1999  9:05:07.  It never gets a bullet.
    void storeDateTime(std::int32_t flags);

    /// Appends a row, a copy of `record` with this value, to the container whose id is the record's.  Of
    /// several items of one id the first counts: if it is no container, the row is dropped.  A text becomes
    /// tag 10 as in storeData, and one of NULL becomes a single blank (with printBullet: the bullet alone); a
    /// blob is copied; any other value is a view, which the caller keeps alive.
    /// - Bad input: NULL changes nothing.
    void storeMultiData(const _MultiPrintStruct* record, const MOLTVARIANT* value);

    /// Answers an item, NULL if there is none.
    /// - Owner: this object, for its whole life.
    [[nodiscard]] _PrintStruct* getPrintData(std::int32_t index) const;
    /// Answers a row of the container of this id, NULL if there is none.
    /// - Owner: this object, for its whole life.
    [[nodiscard]] _MultiPrintStruct* getMultiPrintData(std::int32_t id, std::int32_t index) const;

    /// Answers the number of rows, -1 if there is no item of this id or the first one is no container.
    [[nodiscard]] std::int32_t getNumMultiData(std::int32_t id) const;

  private:
    TARN_HIDDEN tarnTList<_MultiPrintStruct*>* findMultiData(std::int32_t id) const;

    tarnTList<_PrintStruct*>* items_;
    tarn::PrintIndex* firstItems_;
};
