#pragma once

// The containers that values and records stand on: the root class of the polymorphic objects, a growable
// array, a counted list over it, a list of fields by id, and a list of cells by row number that sorts itself
// lazily. Owners of values (core/variant.h, engine/engine_data.h) use them; on their own they hold pointers
// and never release what a pointer leads to.
//
//   tarnTList<MOLTVARIANT*> list;
//   list.add(value);               // count 1, array->capacity 32
//   list.getAt(0);                 // value
//   list.getAt(1);                 // NULL: out of range reads as 0
//   delete list.array;             // a list has no destructor: its owner releases what it holds
//
// Fields are public to be read.  What changes a container goes through its operations, which keep bookkeeping
// of their own behind the fields.
//
// Threads: no shared state, and one container belongs to one thread at a time.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "core/export.h"

struct MOLTVARIANT;

// Root of the polymorphic objects.  The hooks are free for the client: the library neither calls nor
// overrides them.  They answer 0, the fourth -1.
class TARN_EXPORT tarnObject {
  public:
    tarnObject() = default;
    tarnObject(const tarnObject&) = default;
    tarnObject& operator=(const tarnObject&) = default;
    virtual ~tarnObject();
    // Free for the client.
    virtual std::int32_t objectHook1(std::int32_t first, std::int32_t second);
    virtual std::int32_t objectHook2(std::int32_t first, std::int32_t second);
    virtual std::int32_t objectHook3(std::int32_t argument);
    virtual std::int32_t objectHook4(std::int32_t argument);
    virtual std::int32_t objectHook5(std::int32_t argument);
};

// A growable array in which a slot of 0 counts as free.  It knows no number of used slots: that is the
// business of the list around it.  T is a pointer or an integer.
//
// `capacity` grows by 16 and never shrinks.  The block behind it grows by a quarter of its size, so that
// adding n items costs O(n).
template <class T>
class tarnTArray {
  public:
    std::int32_t capacity;  // slots that count
    T* data;                // new T[]; NULL at capacity 0

    // All slots are 0.  A capacity below 1 makes an array without slots.
    explicit tarnTArray(std::int32_t slots = 32)
        : capacity(slots < 1 ? 0 : slots),
          data(capacity == 0 ? nullptr : new T[static_cast<std::size_t>(capacity)]()),
          allocated_(capacity),
          used_(0) {}
    tarnTArray(const tarnTArray&) = delete;
    tarnTArray& operator=(const tarnTArray&) = delete;
    // Releases the slots, not what they point to.
    virtual ~tarnTArray() { delete[] data; }

    // Answers the slot, 0 for an index out of range.
    [[nodiscard]] T getAt(std::int32_t index) const {
        return index < 0 || index >= capacity ? T{} : data[index];
    }

    // Moves the slots from `index` up by one and puts the item there.  The array grows by 16 first if `index`
    // lies at the capacity or behind it, or if the last slot is taken.
    // Bad input: an index below 0, or 16 or more above the capacity, changes nothing.
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

    // Overwrites a slot, without releasing what it held.  At or behind the capacity the array grows first, by
    // 16 or as far as needed and 16 more.
    // Bad input: an index below 0 changes nothing.
    void setAt(std::int32_t index, T item) {
        if (index < 0) return;
        if (index >= capacity) extend(index - capacity < growth ? growth : index - capacity + growth);
        if (index >= capacity) return;
        used_ = std::max(used_, index + 1);
        data[index] = item;
    }

    // Takes a slot out; the higher ones move down, the last becomes 0.
    // Answers the slot's content, 0 for an index out of range.
    T removeAt(std::int32_t index) {
        if (index < 0 || index >= capacity) return T{};
        const T item = data[index];
        if (index < used_) {
            std::copy(data + index + 1, data + used_, data + index);
            data[--used_] = T{};
        }
        return item;
    }

    // Adds slots of 0.  Below 1 nothing happens; without memory the array stays as it was.
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

    // Does to the capacity what insertAt(item, index) would do, so that the insertion itself can't fail.
    void makeRoom(std::int32_t index) {
        if (index >= capacity || data[capacity - 1] != T{}) extend(growth);
    }

  private:
    static constexpr std::int32_t growth = 16;

    // As grow, but with room to spare behind `capacity`, and std::bad_alloc goes to the caller.  An array of
    // 2^31 - 1 slots stays as it is.
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

// A count over one array.  It has no destructor: the owner deletes `array`, then the list.
template <class T>
class tarnTList {
  public:
    std::int32_t count = 0;
    tarnTArray<T>* array;

    tarnTList() : array(new tarnTArray<T>) {}
    tarnTList(const tarnTList&) = delete;
    tarnTList& operator=(const tarnTList&) = delete;

    // Answers the item, 0 for an index out of range.
    [[nodiscard]] T getAt(std::int32_t index) const { return index >= count ? T{} : array->getAt(index); }

    // Puts an item at the end.
    void add(T item) {
        array->insertAt(item, count);
        ++count;
    }
};

// Fields in order of arrival: field i is slot i of `ids` with slot i of `values`.  It has no destructor: the
// owner deletes both arrays, then the list.
class TARN_EXPORT tarnFieldList {
  public:
    std::int32_t count = 0;
    tarnTArray<MOLTVARIANT*>* values;
    tarnTArray<std::int32_t>* ids;

    tarnFieldList();
    tarnFieldList(const tarnFieldList&) = delete;
    tarnFieldList& operator=(const tarnFieldList&) = delete;

    // Gives out a field.  An index out of the list gives id -1 and NULL.
    void getAt(std::int32_t index, std::int32_t& id, MOLTVARIANT*& value) const;

    // Puts a field at the end; `value` passes to whoever owns the list.
    void add(std::int32_t id, MOLTVARIANT* value);
};

// One entry of a keyed list.
struct nodeCell {
    MOLTVARIANT* value;  // may be NULL; owned by whoever owns the list
    union {
        std::int32_t number;  // key type 1
        const char* text;     // key type 2, NUL-terminated
    } key;
    std::int32_t keyType;
};

// Cells by key, sorted when someone needs them sorted.  A cell's position and its key are two things: before
// a sort they are unrelated, and even after one keys may have gaps.
//
// The list makes its cells itself, many in a block, and owns them; the values are its owner's.  Cells that
// were added in key order cost no sort: the list remembers how many leading cells are in order.  So keys are
// read freely, but changed by shiftKeys alone.
class TARN_EXPORT nodeList {
  public:
    std::int32_t count = 0;
    nodeCell** cells = nullptr;  // `count` pointers, new nodeCell*[]
    std::int32_t capacity = 32;  // one is always left free, and it grows by 32
    std::int32_t keyType = 1;    // of cells to come: 1 number, 2 text
    std::int32_t needsSort = 0;  // 1: the cells may be out of key order

    nodeList() = default;
    nodeList(const nodeList&) = delete;
    nodeList& operator=(const nodeList&) = delete;
    ~nodeList() = default;

    // Puts a cell at the end, whatever its key; a key may come to stand twice.  Answers 0.
    std::int32_t add(MOLTVARIANT* value, std::int32_t key);

    // Makes room for this many further cells, so that adding them allocates nothing.
    void reserve(std::int32_t further);

    // Releases the cells and their array, not the values.  The list is empty afterwards.
    void release();

    // Puts the cells in key order if needed; equal keys keep their order of arrival.
    void sort();

    // Sorts, and answers the slot of the first cell with this key, or NULL.
    // A list of another key type than 1 finds nothing.
    // Owner: the list, until it changes.
    nodeCell** find(std::int32_t key) {
        // In a column without gaps a row stands at the position of its number.
        if (needsSort == 0 && !mayRepeat_ && key >= 0 && key < count && cells[key]->key.number == key) {
            return cells + key;
        }
        return search(key);
    }

    // Sorts, and answers the position of the first cell whose key is at or above `key`, `count` if there is
    // none.
    std::int32_t findInsertPosition(std::int32_t key);

    // Takes the cell at a position out; later cells move down by one.
    // Answers its value, which the caller owns now; NULL for a position out of range.
    MOLTVARIANT* removeCell(std::int32_t position);

    // Adds `by` to the keys of the cells from position `first` up to, not including, `last`.  Keys wrap at 32
    // bits. The caller sees to it that the order of keys stays what it was.
    void shiftKeys(std::int32_t first, std::int32_t last, std::int32_t by);

  private:
    struct Block;

    nodeCell** search(std::int32_t key);
    nodeCell* newCell();
    void newBlock(std::int32_t cellCount);
    void makeRoom(std::int32_t slots);

    Block* blocks_ = nullptr;        // all cells live here
    nodeCell* freeCells_ = nullptr;  // removed ones, chained through `value`
    std::int32_t allocated_ = 0;     // slots in `cells`
    std::int32_t unusedCells_ = 0;   // in the newest block
    std::int32_t blockCells_ = 0;    // size of the newest block
    std::int32_t sorted_ = 0;        // leading cells that are in key order
    bool mayRepeat_ = false;         // a key may stand twice, or isn't a number
};

// Payload of a column, a value of tag 21.
struct multiColumn {
    nodeList* nodes;
};

// Orders two cells by the key type of a's cell: 1 by a's key minus b's, 2 by the bytes of the texts as -1, 0
// or 1 (a NULL text counts as empty), anything else as equal.  The arguments are slots, as qsort passes them.
TARN_EXPORT int binarySearchCompare(const nodeCell* const* a, const nodeCell* const* b);
