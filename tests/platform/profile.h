#pragma once

// An ini file in a folder of its own, for the tests of the profile operations.

#include <string>

#include "tests/support.h"

namespace tarntest {

struct ProfileFiles : testing::Test {
    TemporaryFolder folder{inMemory};
    std::string file = folder.file("x.ini");
    std::string buffer;  // of the last read, with # where nothing was written

    std::string read(const char* section, const char* key, const char* fallback = "DEF", DWORD size = 200) {
        buffer.assign(2000, '#');
        const DWORD count =
            GetPrivateProfileStringA(section, key, fallback, buffer.data(), size, file.c_str());
        if (size != 0) {
            EXPECT_EQ(buffer[count], '\0');
        }
        EXPECT_EQ(buffer.find_first_not_of('#', size), std::string::npos) << "written behind the buffer";
        return buffer.substr(0, count);
    }
    BOOL write(const char* section, const char* key, const char* text) const {
        return WritePrivateProfileStringA(section, key, text, file.c_str());
    }
};

}  // namespace tarntest
