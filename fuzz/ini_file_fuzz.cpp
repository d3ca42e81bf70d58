// Ini files: a value that is written reads back, and nothing else of the file changes.

#include <algorithm>

#include "fuzz/property.h"
#include "platform/win32.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using tarnfuzz::require;
    const std::string input = tarnfuzz::file(".ini");
    tarnfuzz::fill(input, data, size);
    char buffer[4096];
    GetPrivateProfileStringA(nullptr, nullptr, "", buffer, sizeof buffer, input.c_str());
    GetPrivateProfileStringA("s", nullptr, "", buffer, sizeof buffer, input.c_str());
    GetPrivateProfileIntA("s", "k", 7, input.c_str());
    require(WritePrivateProfileStringA("s", "k", "written", input.c_str()) != 0, "a value is written");
    require(GetPrivateProfileStringA("s", "k", "", buffer, sizeof buffer, input.c_str()) == 7,
            "it reads back");
    const std::string once = tarnfuzz::contentOf(input);
    require(WritePrivateProfileStringA("s", "k", "another", input.c_str()) != 0, "it is replaced");
    require(WritePrivateProfileStringA("s", "k", "written", input.c_str()) != 0, "and put back");
    require(tarnfuzz::contentOf(input) == once, "with every other byte as it was");
    return 0;
}
