// The library as a shared object, linked to this program and to two modules that it loads:
// present/startup.cpp and core/exception.cpp.

#include <gtest/gtest.h>

#include <vector>

#include "core/exception.h"
#include "platform/host.h"
#include "present/startup.h"

namespace {

TEST(SharedLibrary, ModulesFindOneSlotAndReadWhatAnotherWrote) {
    std::vector<HINSTANCE> loaded;
    // Every function pointer fits into any other; the caller knows the true type.
    const auto find = [&](const char* file, const char* name) {
        int (*found)() = nullptr;
        EXPECT_EQ(loadDllFunc(loaded.emplace_back(), &found, file, name, 0), 1) << file << ' ' << name;
        return found;
    };
    const auto slotOf = [&](const char* file) {
        return reinterpret_cast<void** (*)()>(reinterpret_cast<void (*)()>(find(file, "sharedSlot")))();
    };
    EXPECT_EQ(find(TARN_FIRST_MODULE, "moduleNumber")(), 1);
    EXPECT_EQ(find(TARN_SECOND_MODULE, "moduleNumber")(), 2);
    void** const slot = slotOf(TARN_FIRST_MODULE);
    EXPECT_EQ(slotOf(TARN_SECOND_MODULE), slot);
    EXPECT_EQ(getGlobalPointer(), slot);
    EXPECT_EQ(*slot, nullptr);
    *slot = &loaded;
    for (const HINSTANCE module : loaded) FreeLibrary(module);
    EXPECT_EQ(*getGlobalPointer(), &loaded);  // the slot outlives the module that wrote it
    EXPECT_EQ(tarn::openHandles(), 0);
}

}  // namespace
