// The shared pointer slot.  Tests: tests/shared/shared_test.cpp.

#include "present/startup.h"

namespace {

void* globalPointer = nullptr;

}  // namespace

void** getGlobalPointer() {
    return &globalPointer;
}
