// The keyed list: an array of cell pointers of which a leading part is known to be in key order.  Adding in
// order extends that part, a sort puts a few others into their places there and merges many, and a row is
// first looked for at the position that it has in a column without gaps.  The array has room at both ends, so
// that a late cell moves those before its place or those behind it, whichever are fewer.
// Tests: tests/core/containers_test.cpp.

#include <algorithm>
#include <cstring>
#include <new>

#include "base/wrapping.h"
#include "core/cells.h"
#include "core/containers.h"

namespace {

constexpr std::int32_t keyTypeNumber = 1;
constexpr std::int32_t keyTypeText = 2;
constexpr std::int32_t capacityStep = 32;
constexpr std::int32_t firstSlots = 4;
constexpr std::int32_t firstBlockCells = 2;
constexpr std::int32_t mostBlockCells = 1000;  // unless more are asked for at once
constexpr std::int32_t fewCells = 256;         // as many are placed by a search each, more are merged
constexpr std::int32_t manyMoves = 64;         // are worth room in front

int compareTexts(const char* a, const char* b) {
    const int order = std::strcmp(a == nullptr ? "" : a, b == nullptr ? "" : b);
    return (order > 0) - (order < 0);
}

// The true order of the keys; binarySearchCompare answers the same sign unless its difference wraps.
bool comesBefore(const nodeCell* a, const nodeCell* b) {
    if (a->keyType == keyTypeNumber) return a->key.number < b->key.number;
    return a->keyType == keyTypeText && compareTexts(a->key.text, b->key.text) < 0;
}

}  // namespace

int binarySearchCompare(const nodeCell* const* a, const nodeCell* const* b) {
    switch ((*a)->keyType) {
        case keyTypeNumber: return tarn::wrappingDifference((*a)->key.number, (*b)->key.number);
        case keyTypeText: return compareTexts((*a)->key.text, (*b)->key.text);
        default: return 0;
    }
}

// A run of cells behind a link to the older blocks.
struct nodeList::Block {
    Block* older;
    std::int32_t frontRoom;  // of the newest block: free slots of the array before `cells`
    tarn::CellPlace places[1];

    static std::size_t sizeFor(std::int32_t cellCount) {
        return offsetof(Block, places) + static_cast<std::size_t>(cellCount) * sizeof(tarn::CellPlace);
    }
};

nodeCell* nodeList::newCell() {
    if (freeCells_ != nullptr) {
        nodeCell* const cell = freeCells_;
        freeCells_ = reinterpret_cast<nodeCell*>(cell->value);
        return cell;
    }
    if (unusedCells_ == 0) newBlock(1);
    return &blocks_->places[blockCells_ - unusedCells_--].cell;
}

// Cells come from the new block, which is made when the one before is used up or has too few left.
void nodeList::newBlock(std::int32_t leastCells) {
    const std::int32_t cellCount =
        std::max(leastCells, std::clamp(count / 8, firstBlockCells, mostBlockCells));
    auto* const block = static_cast<Block*>(::operator new(Block::sizeFor(cellCount)));
    block->older = blocks_;
    block->frontRoom = frontRoom();
    blocks_ = block;
    blockCells_ = unusedCells_ = cellCount;
}

void nodeList::makeRoom(std::int32_t slots) {
    if (slots <= allocated_) return;
    moveTo(new nodeCell*[static_cast<std::size_t>(slots)], 0);
    allocated_ = slots;
}

// Without memory there is no room.
bool nodeList::makeFrontRoom(std::int32_t slots) {
    if (slots <= frontRoom()) return true;
    const std::int32_t room = std::max(slots, count / 4);
    auto* const array =
        new (std::nothrow) nodeCell*[static_cast<std::size_t>(room) + static_cast<std::size_t>(allocated_)];
    if (array != nullptr) moveTo(array, room);
    return array != nullptr;
}

std::int32_t nodeList::frontRoom() const {
    return blocks_ == nullptr ? 0 : blocks_->frontRoom;
}

// Without a block there is no cell yet, and no room in front.
void nodeList::moveTo(nodeCell** array, std::int32_t room) {
    std::copy(cells, cells + count, array + room);
    delete[](cells - frontRoom());
    cells = array + room;
    if (blocks_ != nullptr) blocks_->frontRoom = room;
}

// Moves the array's front, over the room before it or over its first cells.
void nodeList::moveFront(std::int32_t by) {
    cells += by;
    blocks_->frontRoom += by;
    allocated_ -= by;
}

void nodeList::reserve(std::int32_t further) {
    if (further < 1) return;
    if (count + further > allocated_) makeRoom(count + std::max(further, count / 4));
    if (unusedCells_ < further) newBlock(further);
}

std::int32_t nodeList::add(MOLTVARIANT* value, std::int32_t key) {
    if (count == allocated_) makeRoom(std::max(firstSlots, count + count / 4));
    nodeCell* const cell = newCell();
    cell->value = value;
    append(cell, key);
    return 0;
}

// The array has room for the cell.
void nodeList::append(nodeCell* cell, std::int32_t key) {
    if (count >= capacity - 1) capacity += capacityStep;
    cell->key.text = nullptr;
    cell->key.number = key;
    cell->keyType = keyType;
    const bool inOrder = sorted_ == count && keyType == keyTypeNumber;
    const bool ascends = inOrder && (count == 0 || cells[count - 1]->key.number < key);
    const bool repeats = inOrder && !ascends && cells[count - 1]->key.number == key;
    cells[count++] = cell;
    if (ascends || repeats) sorted_ = count;
    if (!ascends) mayRepeat_ = true;
    needsSort = 1;
}

void nodeList::release() {
    for (std::int32_t i = 0; i < count; ++i) {
        if (tarn::Cells::ownsValue(*cells[i])) cells[i]->value->destroyContent();
    }
    releaseCells();
}

void nodeList::releaseCells() {
    delete[](cells - frontRoom());
    while (blocks_ != nullptr) {
        Block* const older = blocks_->older;
        ::operator delete(blocks_);
        blocks_ = older;
    }
    cells = nullptr;
    freeCells_ = nullptr;
    count = capacity = allocated_ = unusedCells_ = blockCells_ = sorted_ = needsSort = 0;
    mayRepeat_ = false;
}

void nodeList::sort() {
    if (needsSort == 0) return;
    if (sorted_ < count) {
        nodeCell** const late = cells + sorted_;
        nodeCell** const end = cells + count;
        if (!std::is_sorted(late, end, comesBefore)) std::stable_sort(late, end, comesBefore);
        if (end - late <= fewCells) {
            placeFew();
        } else {
            std::inplace_merge(cells, late, end, comesBefore);
        }
        if (keyType == keyTypeNumber) sorted_ = count;
    }
    needsSort = 0;
}

// Puts the last cells, which are in order, into their places among those before them.  Either the cells
// behind the first place move up or, if that spares many moves, those before the last place move down, each
// once.
void nodeList::placeFew() {
    nodeCell* late[fewCells];
    std::int32_t places[fewCells];
    const std::int32_t few = count - sorted_;
    std::copy_n(cells + sorted_, few, late);
    nodeCell** place = cells;
    std::int32_t placed = 0;
    do {
        place = std::upper_bound(place, cells + sorted_, late[placed], comesBefore);
        places[placed] = static_cast<std::int32_t>(place - cells);
    } while (++placed < few);
    const std::int32_t behindFirst = sorted_ - places[0], beforeLast = places[few - 1];
    if (behindFirst - beforeLast > manyMoves && makeFrontRoom(few)) {
        nodeCell** const from = cells;
        moveFront(-few);
        for (std::int32_t i = 0, first = 0; i < few; first = places[i++]) {
            std::copy(from + first, from + places[i], cells + first + i);
        }
    } else {
        for (std::int32_t i = few, end = sorted_; i > 0; end = places[--i]) {
            std::copy_backward(cells + places[i - 1], cells + end, cells + end + i);
        }
    }
    for (std::int32_t i = 0; i < few; ++i) cells[places[i] + i] = late[i];
}

std::int32_t nodeList::findInsertPosition(std::int32_t key) {
    sort();
    const auto position = std::partition_point(cells, cells + count, [key](const nodeCell* cell) {
        return cell->keyType == keyTypeNumber && cell->key.number < key;
    });
    return static_cast<std::int32_t>(position - cells);
}

nodeCell** nodeList::search(std::int32_t key) {
    sort();
    if (keyType != keyTypeNumber || count == 0) return nullptr;
    const auto keyAt = [this](std::int32_t position) { return cells[position]->key.number; };
    if (key >= 0 && key < count && keyAt(key) == key && (key == 0 || keyAt(key - 1) != key))
        return cells + key;
    if (keyAt(count - 1) < key) return nullptr;
    const std::int32_t position = findInsertPosition(key);
    return keyAt(position) == key ? cells + position : nullptr;
}

MOLTVARIANT* nodeList::removeCell(std::int32_t position) {
    if (position < 0 || position >= count) return nullptr;
    MOLTVARIANT* value = cells[position]->value;
    if (tarn::Cells::ownsValue(*cells[position])) value = new MOLTVARIANT(*value);
    nodeCell* const cell = tarn::Cells::take(*this, position);
    cell->value = nullptr;
    tarn::Cells::destroy(*this, cell);
    return value;
}

void nodeList::shiftKeys(std::int32_t first, std::int32_t last, std::int32_t by) {
    first = std::max(first, 0);
    last = std::min(last, count);
    if (first >= last || by == 0) return;
    const auto wraps = [this, by](std::int32_t i) {
        const std::int32_t key = cells[i]->key.number;
        return (tarn::wrappingSum(key, by) < key) != (by < 0);
    };
    // Of keys in order the lowest or the highest wraps first.
    const std::int32_t lastInOrder = std::min(last, sorted_) - 1;
    const bool wrapped = first <= lastInOrder && (wraps(first) || wraps(lastInOrder));
    for (std::int32_t i = first; i < last; ++i) {
        std::int32_t& key = cells[i]->key.number;
        key = tarn::wrappingSum(key, by);
    }
    const auto inOrder = [this](std::int32_t i) {
        return i < 1 || i >= count || !comesBefore(cells[i], cells[i - 1]);
    };
    std::int32_t ordered = sorted_;
    if (!inOrder(last)) ordered = std::min(ordered, last);
    if (!inOrder(first)) ordered = std::min(ordered, first);
    if (wrapped) ordered = 0;
    mayRepeat_ = true;
    if (ordered == sorted_) return;
    sorted_ = ordered;
    needsSort = 1;
}

MOLTVARIANT& tarn::Cells::add(nodeList& list, std::int32_t key) {
    list.add(nullptr, key);
    return valueOf(*list.cells[list.count - 1]);
}

nodeCell* tarn::Cells::take(nodeList& list, std::int32_t position) {
    nodeCell* const cell = list.cells[position];
    if (position < list.count / 2) {
        std::copy_backward(list.cells, list.cells + position, list.cells + position + 1);
        list.moveFront(1);
    } else {
        std::copy(list.cells + position + 1, list.cells + list.count, list.cells + position);
    }
    --list.count;
    if (position < list.sorted_) --list.sorted_;
    return cell;
}

void tarn::Cells::putBack(nodeList& list, nodeCell* cell, std::int32_t key) {
    list.append(cell, key);
}

void tarn::Cells::destroy(nodeList& list, nodeCell* cell) {
    destroyValue(*cell);
    cell->value = reinterpret_cast<MOLTVARIANT*>(list.freeCells_);
    list.freeCells_ = cell;
}

void tarn::Cells::destroyAll(nodeList& list) {
    for (std::int32_t i = 0; i < list.count; ++i) destroyValue(*list.cells[i]);
    list.releaseCells();
}
