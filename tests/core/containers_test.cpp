// Arrays, lists and keyed cells: core/containers.h and core/containers.cpp.

#include <algorithm>
#include <random>
#include <vector>

#include "core/containers.h"
#include "tests/support.h"

namespace {

using Cells = std::vector<std::int32_t>;

Cells keysOf(const nodeList& list) {
    Cells keys;
    for (std::int32_t i = 0; i < list.count; ++i) keys.push_back(list.cells[i]->key.number);
    return keys;
}

// The array as it is told: one block of `capacity` slots that grows by 16.
struct PlainArray {
    std::vector<std::int32_t> slots = std::vector<std::int32_t>(32);

    void insertAt(std::int32_t item, std::size_t index) {
        if (index >= slots.size() || slots.back() != 0) slots.resize(slots.size() + 16);
        slots.pop_back();
        slots.insert(slots.begin() + static_cast<std::ptrdiff_t>(index), item);
    }
    std::int32_t removeAt(std::size_t index) {
        if (index >= slots.size()) return 0;
        const std::int32_t removed = slots[index];
        slots.erase(slots.begin() + static_cast<std::ptrdiff_t>(index));
        slots.push_back(0);
        return removed;
    }
    void setAt(std::size_t index, std::int32_t item) {
        if (index >= slots.size()) slots.resize(index < slots.size() + 16 ? slots.size() + 16 : index + 16);
        slots[index] = item;
    }
};

TEST(ArrayTest, ReadsAndCapacitiesAreThoseOfThePlainForm) {
    std::mt19937 random(1);
    tarnTArray<std::int32_t> array;
    PlainArray plain;
    for (int step = 0; step < 20'000; ++step) {
        const auto item = static_cast<std::int32_t>(random() % 3);  // zeros are free slots
        const auto index =
            static_cast<std::int32_t>(random() % (plain.slots.size() + (step % 7 == 0 ? 16 : 0)));
        const auto place = static_cast<std::size_t>(index);
        const auto work = plain.slots.size() > 600 ? 9 : random() % 4;
        if (work == 0) {
            array.insertAt(item, index);
            plain.insertAt(item, place);
        } else if (work == 1) {
            array.setAt(index, item);
            plain.setAt(place, item);
        } else {
            ASSERT_EQ(array.removeAt(index), plain.removeAt(place));
        }
        ASSERT_EQ(Cells(array.data, array.data + array.capacity), plain.slots);
    }
}

TEST(ArrayTest, IndicesOutOfRangeChangeNothing) {
    tarnTArray<std::int32_t> array;
    array.insertAt(1, -1);
    array.insertAt(1, 48);
    array.setAt(-1, 1);
    array.grow(0);
    array.grow(INT32_MAX);
    EXPECT_EQ(array.capacity, 32);
    EXPECT_EQ(array.getAt(-1) + array.getAt(32) + array.removeAt(32) + array.removeAt(-1), 0);
    EXPECT_EQ(Cells(array.data, array.data + 32), Cells(32));
    EXPECT_EQ(tarnTArray<std::int32_t>(-5).capacity, 0);
}

TEST(ListTest, GrowthKeepsEveryItemAndShowsTheToldCapacity) {
    tarnTList<std::int32_t> list;
    for (std::int32_t i = 1; i <= 49; ++i) {
        list.add(i);
        EXPECT_EQ(list.array->capacity, i <= 32 ? 32 : i <= 48 ? 48 : 64) << i;
    }
    for (std::int32_t i = 0; i < 49; ++i) EXPECT_EQ(list.getAt(i), i + 1);
    EXPECT_EQ(list.getAt(49), 0);
    delete list.array;
}

TEST(FieldListTest, AnIndexBeyondTheCountIsNoField) {
    tarnFieldList list;
    list.add(0, nullptr);
    std::int32_t id = 5;
    MOLTVARIANT* value = reinterpret_cast<MOLTVARIANT*>(&list);
    list.getAt(1, id, value);
    EXPECT_EQ(id, -1);
    EXPECT_EQ(value, nullptr);
    list.getAt(0, id, value);
    EXPECT_EQ(id, 0);
    delete list.values;
    delete list.ids;
}

TEST(NodeListTest, RandomWorkMatchesAModelOfKeysInOrderOfArrival) {
    std::mt19937 random(2);
    nodeList list;
    Cells model;  // sorted, as every keyed access leaves the list
    for (int step = 0; step < 30'000; ++step) {
        const auto key = static_cast<std::int32_t>(random() % 200) - 20;
        const auto place = std::lower_bound(model.begin(), model.end(), key);
        const auto work = random() % 5;
        if (work < 2) {
            list.add(nullptr, key);
            ASSERT_EQ(list.needsSort, 1);
            model.insert(place, key);
        } else if (work == 2) {
            ASSERT_EQ(list.findInsertPosition(key), place - model.begin());
        } else if (work == 3) {
            const bool found = place != model.end() && *place == key;
            nodeCell** const slot = list.find(key);
            ASSERT_EQ(slot, found ? list.cells + (place - model.begin()) : nullptr);
        } else if (!model.empty()) {
            const std::int32_t position = (key + 20) % static_cast<std::int32_t>(model.size());
            list.sort();
            list.removeCell(position);
            model.erase(model.begin() + position);
        }
        if (list.needsSort == 0) {
            ASSERT_EQ(keysOf(list), model);
        }
    }
    list.release();
}

TEST(NodeListTest, CapacityLeavesOneSlotFreeAndGrowsByThirtyTwo) {
    nodeList list;
    for (std::int32_t i = 1; i <= 64; ++i) {
        list.add(nullptr, i);
        EXPECT_EQ(list.capacity, i < 32 ? 32 : i < 64 ? 64 : 96) << i;
    }
    list.release();
    EXPECT_EQ(list.add(nullptr, 1), 0);  // it can be used again
    list.release();
}

TEST(NodeListTest, KeysThatWrapAreSortedAnew) {
    nodeList list;
    for (const std::int32_t key : {1, INT32_MAX}) list.add(nullptr, key);
    list.shiftKeys(0, 2, 1);
    list.sort();
    EXPECT_EQ(keysOf(list), (Cells{INT32_MIN, 2}));
    list.release();
}

TEST(NodeListTest, ComparisonFollowsTheKeyTypeOfTheFirstCell) {
    const auto compare = [](nodeCell a, nodeCell b) {
        const nodeCell *first = &a, *second = &b;
        return binarySearchCompare(&first, &second);
    };
    const auto compareTexts = [&](const char* a, const char* b, std::int32_t type) {
        nodeCell first{nullptr, {}, type}, second{nullptr, {}, type};
        first.key.text = a;
        second.key.text = b;
        return compare(first, second);
    };
    EXPECT_EQ(compareTexts("AB", "AC", 2), -1);
    EXPECT_EQ(compareTexts("\xFF", "A", 2), 1);
    EXPECT_EQ(compareTexts("AB", std::string("AB").c_str(), 2), 0);
    EXPECT_EQ(compareTexts("AB", "AC", 0), 0);
    EXPECT_EQ(compare({nullptr, {3}, 1}, {nullptr, {10}, 1}), -7);
    EXPECT_EQ(compare({nullptr, {INT32_MIN}, 1}, {nullptr, {1}, 1}), INT32_MAX);  // the difference wraps
}

}  // namespace
