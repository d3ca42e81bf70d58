// The shared pointer slot.

#include "present/startup.h"

namespace {

void* globalPointer = nullptr;

}  // namespace

void** getGlobalPointer() {
    return &globalPointer;
}
