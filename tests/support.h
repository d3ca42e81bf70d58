#pragma once

// What tests need of the system, once: a temporary folder, whole files, the environment.  Everything stands
// on std::filesystem, so that the same tests also run on Windows.

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32.h"
#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace tarntest {

#if defined(_WIN32)
constexpr bool onWindows = true;
#else
constexpr bool onWindows = false;
#endif

// Where a test that waits for the disk often may have its folder instead, if the system has such a place.
constexpr const char* inMemory = "/dev/shm";

// A folder of its own for one test, gone with the object.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& wished = {}) {
        const auto parent =
            std::filesystem::is_directory(wished) ? wished : std::filesystem::temp_directory_path();
        path_ = parent / ("tarnutil-" + std::to_string(std::random_device{}()));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
};

inline std::string contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void fill(const std::string& file, std::string_view content) {
    std::ofstream(file, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
}

// A text of up to `longest` characters from an alphabet.
inline std::string randomText(std::mt19937& random, std::string_view alphabet, unsigned longest) {
    std::string text(random() % (longest + 1), '\0');
    for (char& c : text) c = alphabet[random() % alphabet.size()];
    return text;
}

// Sets a variable of the environment; NULL takes it away.
inline void setEnvironment(const char* name, const char* value) {
#if defined(_WIN32)
    _putenv_s(name, value == nullptr ? "" : value);
#else
    if (value == nullptr) {
        ::unsetenv(name);
    } else {
        ::setenv(name, value, 1);
    }
#endif
}

// Sets the zone of local time, in a form that POSIX and Windows share: UTC0, EST5EDT.
inline void setTimeZone(const char* zone) {
    setEnvironment("TZ", zone);
#if defined(_WIN32)
    ::_tzset();
#else
    ::tzset();
#endif
}

// Holds the clock, for universal and local time alike, at the start of a day until the end of the test.
class HeldClock {
  public:
#if defined(_WIN32)
    static constexpr bool possible = false;
    HeldClock(int, int, int) {}
#else
    static constexpr bool possible = true;
    HeldClock(int year, int month, int day) {
        const SYSTEMTIME now{
            static_cast<WORD>(year), static_cast<WORD>(month), 0, static_cast<WORD>(day), 0, 0, 0, 0};
        tarn::setClock(&now, &now);
    }
    ~HeldClock() {
        tarn::setClock(nullptr, nullptr);
    }
#endif
    HeldClock(const HeldClock&) = delete;
    HeldClock& operator=(const HeldClock&) = delete;
};

}  // namespace tarntest
