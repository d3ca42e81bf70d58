// Arrays, lists and keyed cells: core/containers.h, core/containers.cpp, core/keyed_list.cpp.

#include "core/containers.h"

#include <deque>
#include <map>

#include "tests/support.h"

namespace {

TEST(ArrayTest, RandomWorkMatchesOneBlockThatGrowsBySixteen) {
    std::mt19937 random(1);
    for (int round = 0; round < 100; ++round) {
        tarnTArray<std::int32_t> array;
        std::deque<std::int32_t> plain(32);
        for (int step = 0; step < 200; ++step) {
            const auto item = static_cast<std::int32_t>(random() % 3);  // zeros are free slots
            const std::size_t place = random() % plain.size();
            const auto index = static_cast<std::int32_t>(place);
            const auto work = random() % 16;
            if (work < 9) {
                array.insertAt(item, index);
                if (plain.back() != 0) plain.resize(plain.size() + 16);
                plain.pop_back();
                plain.insert(plain.begin() + index, item);
            } else if (work < 11) {
                array.setAt(index, item);
                plain[place] = item;
            } else {
                ASSERT_EQ(array.removeAt(index), plain[place]);
                plain.erase(plain.begin() + index);
                plain.push_back(0);
            }
            ASSERT_EQ(std::deque(array.data, array.data + array.capacity), plain);
        }
    }
}

TEST(ArrayTest, IndexesOutsideAreEmptyAndAWriteReachesThemAlone) {
    tarnTArray<std::int32_t> array;
    array.insertAt(1, 48);
    array.insertAt(1, -1);
    array.setAt(-1, 1);
    array.grow(INT32_MAX);
    array.grow(-1);
    EXPECT_EQ(array.capacity, 32);
    EXPECT_EQ(array.removeAt(32), 0);
    array.insertAt(1, 47);
    EXPECT_EQ(array.capacity, 48);
    array.setAt(48, 1);
    EXPECT_EQ(array.capacity, 64);
    EXPECT_EQ(array.getAt(64), 0);
}

TEST(ObjectTest, HooksOfTheLibraryDoNothing) {
    tarnObject object;
    EXPECT_EQ(object.objectHook1(1, 2), 0);
    EXPECT_EQ(object.objectHook2(1, 2), 0);
    EXPECT_EQ(object.objectHook3(1), 0);
    EXPECT_EQ(object.objectHook5(1), 0);
}

TEST(NodeListTest, OneSlotIsLeftFree) {
    nodeList list;
    for (std::int32_t i = 1; i <= 64; ++i) {
        list.add(nullptr, i);
        EXPECT_EQ(list.capacity, i < 32 ? 32 : i < 64 ? 64 : 96) << i;
    }
    list.release();
}

TEST(NodeListTest, RandomWorkMatchesAModelWhereEqualKeysKeepTheirOrder) {
    std::mt19937 random(2);
    nodeList list;
    std::multimap<std::int32_t, MOLTVARIANT*> model;
    for (std::uintptr_t step = 1; step < 40'000; ++step) {
        if (step % 100 == 0) {  // short lists of few keys, so that keys are often positions too
            list.release();
            model.clear();
        }
        const auto key = static_cast<std::int32_t>(random() % 12) - 2;
        const auto place = model.lower_bound(key);
        const auto position = static_cast<std::int32_t>(std::distance(model.begin(), place));
        const bool isThere = model.contains(key);
        const auto work = random() % 4;
        if (work == 0) {
            auto* const value = reinterpret_cast<MOLTVARIANT*>(step);
            list.add(value, key);
            model.emplace(key, value);
            ASSERT_EQ(list.needsSort, 1);
            continue;
        }
        if (work == 2) {
            ASSERT_EQ(list.findInsertPosition(key), position);
        } else {
            ASSERT_EQ(list.find(key), isThere ? list.cells + position : nullptr);
        }
        if (work == 1 && isThere) {
            ASSERT_EQ(list.removeCell(position), place->second);
            model.erase(place);
        }
        ASSERT_EQ(static_cast<std::size_t>(list.count), model.size());
        nodeCell** cell = list.cells;
        for (const auto& [modelKey, value] : model) ASSERT_EQ((*cell++)->value, value);
    }
    list.release();
}

TEST(NodeListTest, ShiftedKeysThatLeaveTheirOrderAreSortedAnew) {
    const struct {
        std::int32_t first, last, by;
        std::vector<std::int32_t> keys;
    } rows[] = {
        {0, 3, 1, {INT32_MIN, 2, 6}},  // the last one wraps
        {0, 1, 9, {5, 10, INT32_MAX}}, {1, 3, -9, {-4, 1, INT32_MAX - 9}},
        {-3, 2, 1, {2, 6, INT32_MAX}}, {2, 99, -1, {1, 5, INT32_MAX - 1}},
    };
    for (const auto& each : rows) {
        nodeList list;
        for (const std::int32_t key : {1, 5, INT32_MAX}) list.add(nullptr, key);
        list.sort();
        list.shiftKeys(each.first, each.last, each.by);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(list.find(each.keys[i]), list.cells + i) << each.by << ", key " << each.keys[i];
        EXPECT_EQ(list.removeCell(3), nullptr);
        list.release();
    }
}

TEST(NodeListTest, ARowThatIsThereTwiceAfterAShiftIsFoundAtItsFirstCell) {
    nodeList list;
    for (const std::int32_t key : {1, 2, 3}) list.add(nullptr, key);
    list.sort();
    list.shiftKeys(1, 3, -1);
    EXPECT_EQ(list.find(1), list.cells);
    list.release();
}

TEST(NodeListTest, TextKeysAreOrderedAsBytesAndNotFoundByNumber) {
    nodeList list;
    list.keyType = 2;
    for (const char* key : {"\xFF", "AB", static_cast<const char*>(nullptr), ""}) {
        list.add(nullptr, 0);
        list.cells[list.count - 1]->key.text = key;
    }
    EXPECT_EQ(list.find(0), nullptr);
    nodeCell** const cells = list.cells;
    EXPECT_STREQ(cells[2]->key.text, "AB");
    EXPECT_EQ(binarySearchCompare(cells, cells + 1), 0) << "no text is an empty one";
    EXPECT_EQ(binarySearchCompare(cells + 3, cells + 2), 1);
    cells[3]->keyType = 0;
    EXPECT_EQ(binarySearchCompare(cells + 3, cells + 2), 0) << "the first cell's type counts";
    cells[0]->keyType = 1;
    cells[0]->key.number = INT32_MIN;
    cells[1]->key.number = 1;
    EXPECT_EQ(binarySearchCompare(cells, cells + 1), INT32_MAX) << "the difference wraps";
    list.release();
}

}  // namespace
