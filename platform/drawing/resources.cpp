// Resources: blocks of bytes under a module, a type and an id, registered by the program.  A found resource
// and a loaded one are the same checked handle.
// Tests: tests/platform/screen_test.cpp.

#include <charconv>
#include <cstring>
#include <memory>
#include <new>

#include "platform/drawing/objects.h"
#include "platform/handle_table.h"
#include "platform/host.h"
#include "platform/win32.h"

namespace {

struct Resource {
    HINSTANCE module;
    std::uint16_t type, id;
    std::uint32_t size;
    std::unique_ptr<unsigned char[]> bytes;
};

constinit tarn::HandleTable<Resource> resources{tarn::HandleFamily::resource};

Resource* findResource(HANDLE handle) {
    Resource* resource = resources.find(handle);
    if (resource == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return resource;
}

// A name is a number in a pointer's place, or its text behind "#"; -1 for all others.
std::int32_t resourceNumber(const char* name) {
    const auto number = reinterpret_cast<ULONG_PTR>(name);
    if (number <= 0xFFFF) return static_cast<std::int32_t>(number);
    if (*name != '#') return -1;
    std::uint16_t id = 0;
    const char* const end = name + std::strlen(name);
    const auto read = std::from_chars(name + 1, end, id);
    return read.ec == std::errc{} && read.ptr == end ? id : -1;
}

HANDLE findNumbered(HINSTANCE module, std::int32_t type, std::int32_t id) {
    return resources.findIf([=](const Resource& resource) {
        return resource.module == module && resource.type == type && resource.id == id;
    });
}

}  // namespace

namespace tarn {

void addResource(HINSTANCE module, std::uint16_t type, std::uint16_t id, const void* data,
                 std::uint32_t size) {
    if (data == nullptr && size != 0) return;
    auto resource = std::make_unique<Resource>();
    resource->module = module;
    resource->type = type;
    resource->id = id;
    resource->size = size;
    resource->bytes = std::make_unique<unsigned char[]>(size);
    if (size != 0) std::memcpy(resource->bytes.get(), data, size);
    resources.close(findNumbered(module, type, id));
    resources.open(std::move(resource), Counted::no);
}

void removeResources(HINSTANCE module) {
    const auto ofModule = [module](const Resource& resource) { return resource.module == module; };
    while (const HANDLE handle = resources.findIf(ofModule)) resources.close(handle);
}

}  // namespace tarn

HRSRC FindResourceA(HINSTANCE module, const char* name, const char* type) {
    const std::int32_t number = resourceNumber(type);
    const HANDLE handle = findNumbered(module, number, resourceNumber(name));
    if (handle != nullptr) return static_cast<HRSRC>(handle);
    const HANDLE sameType = resources.findIf(
        [=](const Resource& resource) { return resource.module == module && resource.type == number; });
    SetLastError(sameType == nullptr ? ERROR_RESOURCE_TYPE_NOT_FOUND : ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
}

HGLOBAL LoadResource(HINSTANCE, HRSRC resource) {
    return findResource(resource) == nullptr ? nullptr : resource;
}

void* LockResource(HGLOBAL handle) {
    const Resource* resource = findResource(handle);
    return resource == nullptr ? nullptr : resource->bytes.get();
}

DWORD SizeofResource(HINSTANCE, HRSRC handle) {
    const Resource* resource = findResource(handle);
    return resource == nullptr ? 0 : resource->size;
}

BOOL FreeResource(HGLOBAL) {
    return FALSE;  // a resource is released with its module
}

HBITMAP LoadBitmapA(HINSTANCE module, const char* name) {
    const HRSRC handle = FindResourceA(module, name, RT_BITMAP);
    if (handle == nullptr) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    const Resource* resource = findResource(handle);
    return tarn::loadPackedBitmap(resource->bytes.get(), resource->size);
}
