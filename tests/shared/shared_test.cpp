// The library as a shared object, linked to this program and to two modules that it loads:
// present/startup.cpp and core/exception.cpp.

#include <gtest/gtest.h>

#include "core/exception.h"
#include "platform/host.h"
#include "present/startup.h"

namespace {

// A loaded module, released with the object.
class Module {
  public:
    explicit Module(const char* file) : file_(file) {}
    ~Module() { FreeLibrary(module_); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    // Loads the module once more and gives the extra load back.
    template <class Function>
    Function* find(const char* name) {
        int (*found)() = nullptr;
        HINSTANCE module = nullptr;
        EXPECT_EQ(loadDllFunc(module, &found, file_, name, 0), 1) << file_ << ' ' << name;
        if (module_ != nullptr) FreeLibrary(module);
        module_ = module;
        // Every function pointer fits into any other; the caller knows the true type.
        return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(found));
    }

  private:
    const char* file_;
    HINSTANCE module_ = nullptr;
};

TEST(SharedLibrary, ModulesFindOneSlotAndReadWhatAnotherWrote) {
    int session = 0;
    {
        Module first(TARN_FIRST_MODULE);
        Module second(TARN_SECOND_MODULE);
        EXPECT_EQ(first.find<int()>("moduleNumber")(), 1);
        EXPECT_EQ(second.find<int()>("moduleNumber")(), 2);

        void** const slot = first.find<void**()>("sharedSlot")();
        EXPECT_EQ(*slot, nullptr);
        EXPECT_EQ(second.find<void**()>("sharedSlot")(), slot);
        EXPECT_EQ(getGlobalPointer(), slot);

        *slot = &session;
    }
    EXPECT_EQ(*getGlobalPointer(), &session);  // the slot outlives the module that wrote it
    EXPECT_EQ(tarn::openHandles(), 0);
}

}  // namespace
