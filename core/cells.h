#pragma once

// Internal: the cells of a keyed list together with their values, as the library makes and removes them.
// Users want nodeList in core/containers.h.
//
// Each cell has room for a value beside it, in one block of the list.  A value that the library puts into a
// list lies there; one that a client gave to nodeList::add, or put into a cell, comes from new.

#include <cstdint>
#include <new>

#include "core/containers.h"
#include "core/variant.h"

namespace tarn {

// What the blocks of a list consist of.  Every cell is part of one.
struct CellPlace {
    nodeCell cell;
    MOLTVARIANT value;
};

struct Cells {
    // Whether the cell's value lies beside it.
    static bool ownsValue(nodeCell& cell) { return cell.value == &reinterpret_cast<CellPlace&>(cell).value; }

    // The cell's value; a cell without one gets an empty one.
    static MOLTVARIANT& valueOf(nodeCell& cell) {
        if (cell.value == nullptr) cell.value = new (&reinterpret_cast<CellPlace&>(cell).value) MOLTVARIANT;
        return *cell.value;
    }

    // Releases the value, wherever it lies; the pointer to it stays.
    static void destroyValue(nodeCell& cell) {
        if (cell.value == nullptr) return;
        cell.value->destroyContent();
        if (!ownsValue(cell)) delete cell.value;
    }

    // Whether a cell with this key would be behind all others, which are in order.
    static bool isBehindAll(const nodeList& list, std::int32_t key) {
        if (list.count == 0) return true;
        return list.keyType == 1 && list.sorted_ == list.count &&
               list.cells[list.count - 1]->key.number < key;
    }

    // Puts a cell with an empty value at the end, and answers the value.
    static MOLTVARIANT& add(nodeList& list, std::int32_t key);

    // Takes the cell at a position out, value and all.  It is then put back, at the end, or destroyed; none
    // of these allocates memory.
    static nodeCell* take(nodeList& list, std::int32_t position);
    static void putBack(nodeList& list, nodeCell* cell, std::int32_t key);
    static void destroy(nodeList& list, nodeCell* cell);

    // As nodeList::release, with the values of clients.
    static void destroyAll(nodeList& list);
};

}  // namespace tarn
