// A client's module for shared_test.cpp, built twice under two names and linked to the shared library.

#include "present/startup.h"

#define MODULE_EXPORT extern "C" __attribute__((visibility("default")))

MODULE_EXPORT void** sharedSlot() {
    return getGlobalPointer();
}
MODULE_EXPORT int moduleNumber() {
    return TARN_MODULE_NUMBER;
}
