// Object root and field list.
// Tests: tests/core/containers_test.cpp.

#include "core/containers.h"

#include <memory>

tarnObject::~tarnObject() = default;
std::int32_t tarnObject::objectHook1(std::int32_t /*first*/, std::int32_t /*second*/) {
    return 0;
}
std::int32_t tarnObject::objectHook2(std::int32_t /*first*/, std::int32_t /*second*/) {
    return 0;
}
std::int32_t tarnObject::objectHook3(std::int32_t /*argument*/) {
    return 0;
}
std::int32_t tarnObject::objectHook4(std::int32_t /*argument*/) {
    return -1;
}
std::int32_t tarnObject::objectHook5(std::int32_t /*argument*/) {
    return 0;
}

tarnFieldList::tarnFieldList() {
    auto valueArray = std::make_unique<tarnTArray<MOLTVARIANT*>>();
    ids = new tarnTArray<std::int32_t>;
    values = valueArray.release();
}

void tarnFieldList::getAt(std::int32_t index, std::int32_t& id, MOLTVARIANT*& value) const {
    const bool inside = index >= 0 && index < count;
    id = inside ? ids->getAt(index) : -1;
    value = inside ? values->getAt(index) : nullptr;
}

void tarnFieldList::add(std::int32_t id, MOLTVARIANT* value) {
    values->makeRoom(count);
    ids->makeRoom(count);
    values->insertAt(value, count);
    ids->insertAt(id, count);
    ++count;
}
