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
    void removeAt(std::size_t index) {
        if (index >= slots.size()) return;
        slots.erase(slots.begin() + static_cast<std::ptrdiff_t>(index));
        slots.push_back(0);
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
        switch (plain.slots.size() > 600 ? 9 : random() % 4) {
            case 0:
                array.insertAt(item, index);
                plain.insertAt(item, place);
                break;
            case 1:
                array.setAt(index, item);
                plain.setAt(place, item);
                break;
            default: {
                const std::int32_t expected = place < plain.slots.size() ? plain.slots[place] : 0;
                ASSERT_EQ(array.removeAt(index), expected);
                plain.removeAt(place);
                break;
            }
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
        switch (random() % 5) {
            case 0:
            case 1:
                list.add(nullptr, key);
                ASSERT_EQ(list.needsSort, 1);
                model.insert(place, key);
                break;
            case 2: ASSERT_EQ(list.findInsertPosition(key), place - model.begin()); break;
            case 3: {
                nodeCell** const slot = list.find(key);
                ASSERT_EQ(slot != nullptr, place != model.end() && *place == key);
                if (slot != nullptr) {
                    ASSERT_EQ(slot - list.cells, place - model.begin());
                }
                break;
            }
            default:
                if (model.empty()) break;
                list.sort();
                list.removeCell(static_cast<std::int32_t>(static_cast<std::size_t>(key + 20) % model.size()));
                model.erase(model.begin() +
                            static_cast<std::ptrdiff_t>(static_cast<std::size_t>(key + 20) % model.size()));
                break;
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
        const nodeCell* first = &a;
        const nodeCell* second = &b;
        return binarySearchCompare(&first, &second);
    };
    const auto textCell = [](const char* key, std::int32_t type) {
        nodeCell cell{nullptr, {}, type};
        cell.key.text = key;
        return cell;
    };
    EXPECT_EQ(compare(textCell("AB", 2), textCell("AC", 2)), -1);
    EXPECT_EQ(compare(textCell("\xFF", 2), textCell("A", 2)), 1);
    EXPECT_EQ(compare(textCell("AB", 2), textCell("AB", 2)), 0);
    EXPECT_EQ(compare(textCell("AB", 0), textCell("AC", 0)), 0);
    EXPECT_EQ(compare({nullptr, {3}, 1}, {nullptr, {10}, 1}), -7);
    EXPECT_EQ(compare({nullptr, {INT32_MIN}, 1}, {nullptr, {1}, 1}), INT32_MAX);  // the difference wraps
}

}  // namespace
