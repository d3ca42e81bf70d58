// Modules on dlopen.  A module that is loaded twice has one handle and is unloaded by its last FreeLibrary.
// Tests: tests/platform/messages_test.cpp, tests/core/exception_test.cpp.

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>

#include "platform/handle_table.h"
#include "platform/win32.h"

namespace {

struct Module {
    void* system;  // dlopen's
    int loads;
};

constinit tarn::HandleTable<Module> modules{tarn::HandleFamily::module};
constinit std::mutex loadsMutex;  // never held while the system loads or unloads
constinit std::atomic<UINT> errorMode{0};

constexpr const char* suffix = ".so";

void* refuse(DWORD code) {
    SetLastError(code);
    return nullptr;
}

// Whether the file begins as a module that this process could load; one that it then can't lacks a module
// itself.
bool looksLoadable(int file) {
    constexpr unsigned char thisClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;
    unsigned char identity[EI_NIDENT] = {};
    return ::pread(file, identity, sizeof identity, 0) == sizeof identity &&
           std::memcmp(identity, ELFMAG, SELFMAG) == 0 && identity[EI_CLASS] == thisClass;
}

// Why `path` couldn't be loaded.
DWORD loadError(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return ERROR_MOD_NOT_FOUND;
    struct stat status {};
    const bool plain = ::fstat(file, &status) == 0 && S_ISREG(status.st_mode);
    const bool loadable = plain && looksLoadable(file);
    ::close(file);
    return plain && !loadable ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND;
}

}  // namespace

HMODULE LoadLibraryA(const char* file) {
    if (file == nullptr || *file == '\0') return static_cast<HMODULE>(refuse(ERROR_MOD_NOT_FOUND));
    std::string path = file;
    std::ranges::replace(path, '\\', '/');
    DWORD error = ERROR_MOD_NOT_FOUND;
    void* system = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (system == nullptr) {
        error = loadError(path);
        system = ::dlopen((path + suffix).c_str(), RTLD_NOW | RTLD_LOCAL);
    }
    if (system == nullptr) {
        if (error == ERROR_MOD_NOT_FOUND) error = loadError(path + suffix);
        return static_cast<HMODULE>(refuse(error));
    }
    std::unique_ptr<void, decltype([](void* loaded) { ::dlclose(loaded); })> owner(system);
    const std::lock_guard lock(loadsMutex);
    HANDLE handle = modules.findIf([system](const Module& module) { return module.system == system; });
    if (handle != nullptr) {
        ++modules.find(handle)->loads;
    } else {
        handle = modules.open(std::make_unique<Module>(Module{system, 1}));
    }
    if (handle != nullptr) static_cast<void>(owner.release());  // the table's from now on
    return static_cast<HMODULE>(handle);
}

FARPROC GetProcAddress(HMODULE handle, const char* name) {
    const Module* module = modules.find(handle);
    const bool named = reinterpret_cast<ULONG_PTR>(name) > 0xFFFF;  // a smaller one is an ordinal
    void* address = nullptr;
    if (named && (module != nullptr || handle == nullptr)) {
        address = ::dlsym(module == nullptr ? RTLD_DEFAULT : module->system, name);
    }
    if (address == nullptr) SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}

BOOL FreeLibrary(HMODULE handle) {
    void* system = nullptr;
    {
        const std::lock_guard lock(loadsMutex);
        Module* module = modules.find(handle);
        if (module == nullptr) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return FALSE;
        }
        system = module->system;
        if (--module->loads == 0) modules.close(handle);
    }
    ::dlclose(system);
    return TRUE;
}

BOOL DisableThreadLibraryCalls(HMODULE handle) {
    if (modules.find(handle) != nullptr) return TRUE;
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
}

UINT SetErrorMode(UINT mode) {
    return errorMode.exchange(mode);
}

UINT GetErrorMode() {
    return errorMode;
}
