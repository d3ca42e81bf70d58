// A handle is a number: a slot of one table, how often the slot was handed out before, and a tag.  So a
// closed handle is found out even when its slot serves another key.  The lock is held for a look at the table
// only.

#include "platform/registry_handles.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "platform/handle_count.h"

namespace tarn::registry {

namespace {

constexpr ULONG_PTR tag = 2;  // the roots have the highest bit of 32, files and NULL other low bits
constexpr int tagBits = 3;
constexpr int slotBits = 15;
constexpr int useBits = 13;
constexpr std::size_t mostSlots = std::size_t{1} << slotBits;
static_assert(tagBits + slotBits + useBits == 31);

struct Slot {
    OpenKey* key = nullptr;  // owned
    ULONG_PTR uses = 0;
};

// Needs neither a constructor nor a destructor at run time; the keys that a program leaves open go with it.
struct Table {
    std::mutex mutex;
    Slot* slots = nullptr;  // owned
    std::size_t count = 0;
};
constinit Table table;

HKEY handleOf(std::size_t slot) {
    const ULONG_PTR number = table.slots[slot].uses << slotBits | slot;
    return reinterpret_cast<HKEY>(number << tagBits | tag);
}

Slot* slotOf(HKEY handle) {
    const auto slot = reinterpret_cast<ULONG_PTR>(handle) >> tagBits & (mostSlots - 1);
    if (slot >= table.count || table.slots[slot].key == nullptr || handleOf(slot) != handle) return nullptr;
    return &table.slots[slot];
}

void grow() {
    constexpr std::size_t firstSlots = 64;
    const std::size_t count = std::min(mostSlots, std::max(firstSlots, 2 * table.count));
    auto slots = std::make_unique<Slot[]>(count);
    std::copy_n(table.slots, table.count, slots.get());
    delete[] table.slots;
    table.slots = slots.release();
    table.count = count;
}

}  // namespace

HKEY publish(std::unique_ptr<OpenKey> key) {
    const std::lock_guard<std::mutex> guard(table.mutex);
    const auto isFree = [](const Slot& slot) { return slot.key == nullptr; };
    auto slot =
        static_cast<std::size_t>(std::find_if(table.slots, table.slots + table.count, isFree) - table.slots);
    if (slot == mostSlots) return nullptr;
    if (slot == table.count) grow();
    table.slots[slot].key = key.release();
    handleOpened();
    return handleOf(slot);
}

OpenKey* find(HKEY handle) {
    const std::lock_guard<std::mutex> guard(table.mutex);
    const Slot* const slot = slotOf(handle);
    return slot == nullptr ? nullptr : slot->key;
}

std::unique_ptr<OpenKey> withdraw(HKEY handle) {
    const std::lock_guard<std::mutex> guard(table.mutex);
    Slot* const slot = slotOf(handle);
    if (slot == nullptr) return nullptr;
    handleClosed();
    slot->uses = (slot->uses + 1) & ((ULONG_PTR{1} << useBits) - 1);
    return std::unique_ptr<OpenKey>(std::exchange(slot->key, nullptr));
}

}  // namespace tarn::registry
