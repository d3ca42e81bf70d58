#pragma once

/// @file
/// The containers under values and records: the root class of the polymorphic objects, a growable array, a
/// counted list over it, a list of fields by id, and a list of cells by row number that sorts itself when it
/// is read.  Owners of values (core/variant.h, engine/engine_data.h) use them; on their own they hold
/// pointers and never release what a pointer given to them leads to.
///
///     tarnTList<MOLTVARIANT*> list;
///     list.add(value);               // count 1, array->capacity 32
///     list.getAt(0);                 // value
///     list.getAt(1);                 // NULL: out of range reads as 0
///     delete list.array;             // a list has no destructor: its owner releases what it holds
///
/// Fields are public to be read.  A container is changed through its operations alone, for they keep
/// bookkeeping of their own behind the fields.
///
/// Threads: no shared state, and one container belongs to one thread at a time.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "core/export.h"

struct MOLTVARIANT;

namespace tarn {
struct Cells;  // core/cells.h
}

/// Root of the polymorphic objects.  The hooks are the client's to override: the library neither calls nor
/// overrides them.
class TARN_EXPORT tarnObject {
  public:
    tarnObject() = default;
    tarnObject(const tarnObject&) = default;
    tarnObject& operator=(const tarnObject&) = default;
    virtual ~tarnObject();
    /// Free for the client.  Answers 0.
    virtual std::int32_t objectHook1(std::int32_t first, std::int32_t second);
    /// Free for the client.  Answers 0.
    virtual std::int32_t objectHook2(std::int32_t first, std::int32_t second);
    /// Free for the client.  Answers 0.
    virtual std::int32_t objectHook3(std::int32_t argument);
    /// Free for the client.  Answers -1.
    virtual std::int32_t objectHook4(std::int32_t argument);
    /// Free for the client.  Answers 0.
    virtual std::int32_t objectHook5(std::int32_t argument);
};

/// A growable array of pointers or integers.  A slot of 0 counts as free; how many slots are in use is the
/// business of the list around it.
///
/// `capacity` grows by 16 and never shrinks.  The block behind it grows by a quarter of its size, so that
/// adding n items costs O(n).
template <class T>
class tarnTArray {
  public:
    std::int32_t capacity;  ///< slots that can be read
    T* data;                ///< new T[]; NULL at capacity 0

    /// Makes so many slots of 0; a number below 1 makes none.
    explicit tarnTArray(std::int32_t slots = 32)
        : capacity(slots < 1 ? 0 : slots),
          data(capacity == 0 ? nullptr : new T[static_cast<std::size_t>(capacity)]()),
          allocated_(capacity),
          used_(0) {}
    tarnTArray(const tarnTArray&) = delete;
    tarnTArray& operator=(const tarnTArray&) = delete;
    /// Releases the slots, not what they point to.
    virtual ~tarnTArray() { delete[] data; }

    /// Answers the slot, 0 for an index out of range.
    [[nodiscard]] T getAt(std::int32_t index) const {
        return index < 0 || index >= capacity ? T{} : data[index];
    }

    /// Moves the slots from `index` on up by one and puts the item there.  The array grows by 16 first if
    /// `index` is at the capacity or behind it, or if the last slot is taken.
    /// - Bad input: an index below 0, or 16 or more above the capacity, changes nothing.
    void insertAt(T item, std::int32_t index) {
        if (index < 0 || index - growth >= capacity) return;
        makeRoom(index);
        if (index >= capacity) return;
        if (index < used_) {
            const std::int32_t last = std::min(used_, capacity - 1);
            std::copy_backward(data + index, data + last, data + last + 1);
        }
        used_ = std::min(std::max(index, used_) + 1, capacity);
        data[index] = item;
    }

    /// Overwrites a slot, without releasing what it held.  For an index at or behind the capacity the array
    /// grows first: by 16, or, if that isn't enough, to 16 slots above the index.
    /// - Bad input: an index below 0 changes nothing.
    void setAt(std::int32_t index, T item) {
        if (index < 0) return;
        if (index >= capacity) extend(index - capacity < growth ? growth : index - capacity + growth);
        if (index >= capacity) return;
        used_ = std::max(used_, index + 1);
        data[index] = item;
    }

    /// Takes a slot out; the higher ones move down, the last becomes 0.
    /// - Answers the slot's content, 0 for an index out of range.
    T removeAt(std::int32_t index) {
        if (index < 0 || index >= capacity) return T{};
        const T item = data[index];
        if (index < used_) {
            std::copy(data + index + 1, data + used_, data + index);
            data[--used_] = T{};
        }
        return item;
    }

    /// Adds slots of 0.  A number below 1 adds none; without memory the array stays as it was.
    void grow(std::int32_t extra) {
        if (extra < 1 || extra > INT32_MAX - capacity) return;
        const std::int32_t wanted = capacity + extra;
        if (wanted > allocated_) {
            T* const block = new (std::nothrow) T[static_cast<std::size_t>(wanted)]();
            if (block == nullptr) return;
            moveTo(block, wanted);
        }
        capacity = wanted;
    }

    /// Makes the capacity what insertAt would make it for this index, so that the insertion itself can't
    /// fail.
    void makeRoom(std::int32_t index) {
        if (index >= capacity || data[capacity - 1] != T{}) extend(growth);
    }

  private:
    static constexpr std::int32_t growth = 16;

    // As grow, but with room to spare behind `capacity`, and without memory it throws std::bad_alloc.  An
    // array of 2^31 - 1 slots stays as it is.
    void extend(std::int32_t extra) {
        if (extra > INT32_MAX - capacity) return;
        const std::int32_t wanted = capacity + extra;
        if (wanted > allocated_) {
            const std::int64_t roomy =
                std::max<std::int64_t>(wanted, std::int64_t{allocated_} + allocated_ / 4);
            const auto slots = static_cast<std::int32_t>(std::min<std::int64_t>(roomy, INT32_MAX));
            moveTo(new T[static_cast<std::size_t>(slots)](), slots);
        }
        capacity = wanted;
    }

    void moveTo(T* block, std::int32_t slots) {
        std::copy(data, data + capacity, block);
        delete[] data;
        data = block;
        allocated_ = slots;
    }

    std::int32_t allocated_;  // slots in the block; those behind `capacity` are 0
    std::int32_t used_;       // slots from here on are 0
};

/// A list: a count over one array.  It has no destructor: the owner deletes `array`, then the list.
template <class T>
class tarnTList {
  public:
    std::int32_t count = 0;
    tarnTArray<T>* array;

    tarnTList() : array(new tarnTArray<T>) {}
    tarnTList(const tarnTList&) = delete;
    tarnTList& operator=(const tarnTList&) = delete;

    /// Answers the item, 0 for an index out of range.
    [[nodiscard]] T getAt(std::int32_t index) const { return index >= count ? T{} : array->getAt(index); }

    /// Puts an item at the end.
    void add(T item) {
        array->insertAt(item, count);
        ++count;
    }
};

/// Fields in order of arrival: field i is slot i of `ids` with slot i of `values`.  It has no destructor: the
/// owner deletes both arrays, then the list.
class TARN_EXPORT tarnFieldList {
  public:
    std::int32_t count = 0;
    tarnTArray<MOLTVARIANT*>* values;
    tarnTArray<std::int32_t>* ids;

    tarnFieldList();
    tarnFieldList(const tarnFieldList&) = delete;
    tarnFieldList& operator=(const tarnFieldList&) = delete;

    /// Reads a field.  An index out of range gives the id -1 and the value NULL.
    void getAt(std::int32_t index, std::int32_t& id, MOLTVARIANT*& value) const;

    /// Puts a field at the end.
    /// - Owner: whoever owns the list owns `value` from now on.
    void add(std::int32_t id, MOLTVARIANT* value);
};

/// One entry of a keyed list.
///
/// A value that a record, or a copy of a column, has put there lies in the list's own memory and isn't
/// deleted by itself.  A client may put one from new in its place, once it has destroyed the old one's
/// content; the owner of the list deletes it.
struct nodeCell {
    MOLTVARIANT* value;  ///< may be NULL; its owner is the list's owner
    union {
        std::int32_t number;  ///< key type 1
        const char* text;     ///< key type 2, NUL-terminated
    } key;
    std::int32_t keyType;  ///< 1 or 2
};

/// Cells by key, sorted when they are first read by key.  A cell's position and its key are two things:
/// before a sort they are unrelated, and even after one keys may have gaps.
///
/// The list makes its cells itself, many in a block, and owns them with the values that lie in the blocks;
/// those that were given to it belong to the list's owner.
/// Cells that are added in key order cost no sort: the list remembers how many leading cells are in order.
/// Each of a few others costs a search, and together one move of the pointers before or behind their places.
/// So keys are read freely, but changed by shiftKeys alone.
class TARN_EXPORT nodeList {
  public:
    std::int32_t count = 0;
    nodeCell** cells = nullptr;  ///< the first `count` are in use, within a new nodeCell*[]
    std::int32_t capacity = 32;  ///< one is always left free, and it grows by 32
    std::int32_t keyType = 1;    ///< of cells to come: 1 number, 2 text
    std::int32_t needsSort = 0;  ///< 1: the cells may be out of key order

    nodeList() = default;
    nodeList(const nodeList&) = delete;
    nodeList& operator=(const nodeList&) = delete;
    ~nodeList() = default;

    /// Puts a cell at the end, whatever its key; a key may be there twice then.  Answers 0.
    /// - Owner: whoever owns the list owns `value`; the cell keeps this pointer.
    std::int32_t add(MOLTVARIANT* value, std::int32_t key);

    /// Makes room for this many further cells, so that adding them allocates nothing.
    void reserve(std::int32_t further);

    /// Releases the cells and their array, with the values that lie beside their cells, but none that was
    /// given to `add`.  The list is empty afterwards.
    void release();

    /// Puts the cells in key order if needed; equal keys keep their order of arrival.
    void sort();

    /// Sorts, and answers the slot of the first cell with this key, or NULL.  A list of another key type than
    /// 1 finds nothing.
    /// - Owner: the list; the slot is good until the list changes.
    nodeCell** find(std::int32_t key) {
        // In a column without gaps a row is at the position of its number.
        if (needsSort == 0 && !mayRepeat_ && key >= 0 && key < count && cells[key]->key.number == key) {
            return cells + key;
        }
        return search(key);
    }

    /// Sorts, and answers the position of the first cell whose key is at or above `key`; `count` if there is
    /// none.
    std::int32_t findInsertPosition(std::int32_t key);

    /// Takes the cell at a position out; later cells move down by one.
    /// - Answers its value, which comes from new: the one that was given to `add`, or a new one that takes
    ///   the content over.  NULL for a position out of range.
    /// - Owner: the caller owns the value now.
    /// - Without memory for a new one it throws std::bad_alloc before anything has changed.
    MOLTVARIANT* removeCell(std::int32_t position);

    /// Adds `by` to the keys of the cells from position `first` up to, not including, `last`.  Keys wrap at
    /// 32 bits.  The caller makes sure that the order of keys stays what it was.
    void shiftKeys(std::int32_t first, std::int32_t last, std::int32_t by);

  private:
    friend struct tarn::Cells;
    struct Block;

    nodeCell** search(std::int32_t key);
    TARN_HIDDEN nodeCell* newCell();
    TARN_HIDDEN void newBlock(std::int32_t leastCells);
    TARN_HIDDEN void makeRoom(std::int32_t slots);
    TARN_HIDDEN bool makeFrontRoom(std::int32_t slots);
    [[nodiscard]] TARN_HIDDEN std::int32_t frontRoom() const;
    TARN_HIDDEN void moveTo(nodeCell** array, std::int32_t room);
    TARN_HIDDEN void moveFront(std::int32_t by);
    TARN_HIDDEN void append(nodeCell* cell, std::int32_t key);
    TARN_HIDDEN void placeFew();
    TARN_HIDDEN void releaseCells();

    Block* blocks_ = nullptr;        // all cells live here, each with room for a value
    nodeCell* freeCells_ = nullptr;  // removed ones, chained through `value`
    std::int32_t allocated_ = 0;     // slots in `cells`
    std::int32_t unusedCells_ = 0;   // in the newest block
    std::int32_t blockCells_ = 0;    // size of the newest block
    std::int32_t sorted_ = 0;        // leading cells that are in key order
    bool mayRepeat_ = false;         // a key may be there twice, or isn't a number
};

/// Payload of a column, a value of tag 21.
struct multiColumn {
    nodeList* nodes;
};

/// Orders two cells by the key type of a's cell.  The arguments are slots, as qsort passes them.
/// - Answers a's key minus b's for key type 1; -1, 0 or 1 by the bytes of the texts for key type 2, where a
///   NULL text counts as empty; 0 for any other key type.
TARN_EXPORT int binarySearchCompare(const nodeCell* const* a, const nodeCell* const* b);
