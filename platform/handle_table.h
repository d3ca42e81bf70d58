#pragma once

// Checked handles for the families of this layer (users want platform/win32.h).  A handle is a number, not an
// address: the family, the slot of its table, and how often that slot was used.  A handle that was closed,
// that belongs to another family or that never was one is found nowhere, so that it can't do harm.
//
// A handle fits 32 bits, since the id of a popup's entry in a menu is its handle, and is above every
// number that Win32 lets a caller pass in a handle's place (colour numbers, resource ids).
//
// Threads: the table may be used from any thread; an object that it gives out belongs to the caller's.

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/handle_count.h"
#include "platform/win32.h"

namespace tarn {

enum class HandleFamily : std::uint32_t {
    menu = 1,
    deviceContext,
    drawingObject,
    resource,
    memory,
    module,
    registryKey
};

// Whether openHandles() shows the handle; the layer's own objects aren't the program's to close.
enum class Counted : bool { no, yes };

// A table is a global without constructor or destructor: what is open at the end of the process ends with it.
template <class Object>
class HandleTable {
  public:
    constexpr explicit HandleTable(HandleFamily family) : family_(static_cast<std::uint32_t>(family)) {}

    // Answers NULL when the table is full.
    HANDLE open(std::unique_ptr<Object> object, Counted counted = Counted::yes) {
        const std::lock_guard lock(mutex_);
        const std::uint32_t index = freeSlot();
        if (index == none) return nullptr;
        Slot& slot = (*slots_)[index];
        slot.object = object.release();
        slot.counted = counted;
        if (counted == Counted::yes) handleOpened();
        return handleOf(index);
    }

    // Answers NULL for what is no open handle of this table.
    Object* find(HANDLE handle) {
        const std::lock_guard lock(mutex_);
        const std::uint32_t index = indexOf(handle);
        return index == none ? nullptr : (*slots_)[index].object;
    }

    // The first handle whose object meets `condition`, or NULL.
    template <class Condition>
    HANDLE findIf(Condition condition) {
        const std::lock_guard lock(mutex_);
        if (slots_ == nullptr) return nullptr;
        for (std::uint32_t index = 0; index < slots_->size(); ++index) {
            const Object* object = (*slots_)[index].object;
            if (object != nullptr && condition(*object)) return handleOf(index);
        }
        return nullptr;
    }

    // Ends the handle and gives its object back; NULL as in find.
    std::unique_ptr<Object> close(HANDLE handle) {
        const std::lock_guard lock(mutex_);
        const std::uint32_t index = indexOf(handle);
        if (index == none) return nullptr;
        Slot& slot = (*slots_)[index];
        if (slot.counted == Counted::yes) handleClosed();
        slot.use = slot.use == lastUse ? 1 : slot.use + 1;
        appendFree(index);
        return std::unique_ptr<Object>(std::exchange(slot.object, nullptr));
    }

  private:
    struct Slot {
        Object* object = nullptr;  // NULL: the slot is free
        std::uint32_t use = 1;
        std::uint32_t nextFree = none;
        Counted counted = Counted::yes;
    };

    // The number of a handle, from the top: 8 bits of use, 20 bits of slot, 4 bits of family.
    static constexpr std::uint32_t familyBits = 4, slotBits = 20, lastUse = 255;
    static constexpr std::uint32_t mostSlots = 1U << slotBits;
    static constexpr std::uint32_t none = mostSlots;
    // So many slots rest before the one that was freed first is used again: an old handle comes back after
    // 255 times as many have been opened.
    static constexpr std::uint32_t restingSlots = 1024;

    HANDLE handleOf(std::uint32_t index) const {
        const std::uint32_t use = (*slots_)[index].use;
        return reinterpret_cast<HANDLE>(
            ULONG_PTR{use << (slotBits + familyBits) | index << familyBits | family_});
    }

    std::uint32_t indexOf(HANDLE handle) const {
        const auto value = reinterpret_cast<ULONG_PTR>(handle);
        const auto index = static_cast<std::uint32_t>(value >> familyBits) % mostSlots;
        if (slots_ == nullptr || index >= slots_->size()) return none;
        return (*slots_)[index].object != nullptr && handleOf(index) == handle ? index : none;
    }

    std::uint32_t freeSlot() {
        if (slots_ == nullptr) slots_ = new std::vector<Slot>;
        const auto size = static_cast<std::uint32_t>(slots_->size());
        if (freeCount_ == 0 || (freeCount_ < restingSlots && size < mostSlots)) {
            if (size == mostSlots) return none;
            slots_->emplace_back();
            return size;
        }
        --freeCount_;
        return std::exchange(firstFree_, (*slots_)[firstFree_].nextFree);
    }

    void appendFree(std::uint32_t index) {
        (freeCount_ == 0 ? firstFree_ : (*slots_)[lastFree_].nextFree) = index;
        lastFree_ = index;
        ++freeCount_;
    }

    std::mutex mutex_;
    std::vector<Slot>* slots_ = nullptr;  // made by the first open, kept for the life of the process
    std::uint32_t family_;
    std::uint32_t firstFree_ = none, lastFree_ = none, freeCount_ = 0;  // freed first, used first
};

}  // namespace tarn
