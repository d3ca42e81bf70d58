// Arrays, lists and keyed cells: core/containers.h and core/containers.cpp.

#include "core/containers.h"
#include "tests/support.h"

namespace {

using Cells = std::vector<std::int32_t>;

Cells keysOf(const nodeList& list) {
    Cells keys;
    for (std::int32_t i = 0; i < list.count; ++i) keys.push_back(list.cells[i]->key.number);
    return keys;
}

TEST(ArrayTest, ReadsAndCapacitiesAreThoseOfOneBlockThatGrowsBySixteen) {
    std::mt19937 random(1);
    tarnTArray<std::int32_t> array;
    Cells plain(32);
    array.grow(INT32_MAX);
    for (int step = 0; step < 20'000; ++step) {
        const auto item = static_cast<std::int32_t>(random() % 3);  // zeros are free slots
        const auto size = static_cast<std::int32_t>(plain.size());
        const std::int32_t index =
            static_cast<std::int32_t>(random() % (plain.size() + (step % 7 == 0 ? 18 : 0))) - 1;
        const auto place = plain.begin() + std::clamp(index, 0, size - 1);
        const bool inside = index >= 0 && index < size;
        const auto work = size > 600 ? 9 : random() % 5;
        ASSERT_EQ(array.getAt(index), inside ? *place : 0);
        if (work == 0) {
            array.insertAt(item, index);
            if (index < 0 || index >= size + 16) continue;
            const std::int32_t grown = !inside || plain.back() != 0 ? size + 16 : size;
            plain.resize(static_cast<std::size_t>(grown));
            plain.pop_back();
            plain.insert(plain.begin() + index, item);
        } else if (work == 1) {
            array.setAt(index, item);
            if (index >= size)
                plain.resize(static_cast<std::size_t>(index < size + 16 ? size + 16 : index + 16));
            if (index >= 0) plain[static_cast<std::size_t>(index)] = item;
        } else if (work == 2 && step % 8 == 0) {
            array.grow(index % 4);
            plain.resize(plain.size() + static_cast<std::size_t>(std::max(index % 4, 0)));
        } else {
            ASSERT_EQ(array.removeAt(index), inside ? *place : 0);
            if (inside) plain.erase(place), plain.push_back(0);
        }
        ASSERT_EQ(Cells(array.data, array.data + array.capacity), plain);
    }
    EXPECT_EQ(tarnTArray<std::int32_t>(-5).capacity, 0);
}

TEST(ListTest, GrowthKeepsEveryItemAndShowsTheToldCapacity) {
    tarnTList<std::int32_t> list;
    tarnFieldList fields;
    nodeList nodes;
    for (std::int32_t i = 1; i <= 64; ++i) {
        list.add(i), fields.add(-i, nullptr), nodes.add(nullptr, i);
        EXPECT_EQ(list.array->capacity, i <= 32 ? 32 : i <= 48 ? 48 : 64) << i;
        EXPECT_EQ(nodes.capacity, i < 32 ? 32 : i < 64 ? 64 : 96) << i << ": one slot is left free";
    }
    for (std::int32_t i = -1; i <= 64; ++i) {
        std::int32_t id = 5;
        MOLTVARIANT* value = reinterpret_cast<MOLTVARIANT*>(&list);
        fields.getAt(i, id, value);
        const bool inside = i >= 0 && i < 64;
        EXPECT_TRUE(list.getAt(i) == (inside ? i + 1 : 0) && id == (inside ? -i - 1 : -1) && value == nullptr)
            << i;
    }
    nodes.release();
    EXPECT_EQ(nodes.add(nullptr, 1), 0);  // it can be used again
    nodes.release();
    delete list.array, delete fields.values, delete fields.ids;
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

TEST(NodeListTest, KeysThatWrapAreSortedAnew) {
    nodeList list;
    for (const std::int32_t key : {1, INT32_MAX}) list.add(nullptr, key);
    list.shiftKeys(0, 2, 1);
    list.sort();
    EXPECT_EQ(keysOf(list), (Cells{INT32_MIN, 2}));
    list.release();
}

TEST(NodeListTest, ComparisonFollowsTheKeyTypeOfTheFirstCell) {
    const std::string again = "AB";
    const std::pair<std::array<nodeCell, 2>, int> rows[] = {
        {{{{nullptr, {.text = "AB"}, 2}, {nullptr, {.text = "AC"}, 2}}}, -1},
        {{{{nullptr, {.text = "\xFF"}, 2}, {nullptr, {.text = "A"}, 2}}}, 1},
        {{{{nullptr, {.text = "AB"}, 2}, {nullptr, {.text = again.c_str()}, 2}}}, 0},
        {{{{nullptr, {.text = "AB"}, 0}, {nullptr, {.text = "AC"}, 0}}}, 0},
        {{{{nullptr, {.number = 3}, 1}, {nullptr, {.number = 10}, 2}}}, -7},
        {{{{nullptr, {.number = INT32_MIN}, 1}, {nullptr, {.number = 1}, 1}}}, INT32_MAX}};  // it wraps
    for (const auto& [cells, order] : rows) {
        const nodeCell *first = &cells[0], *second = &cells[1];
        EXPECT_EQ(binarySearchCompare(&first, &second), order);
    }
}

}  // namespace
