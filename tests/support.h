#pragma once

// What many tests need: the headers that most of them use, temporary folders, whole files, the environment
// and the clock.  It uses std::filesystem, so that the same tests also run on Windows.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "platform/win32.h"
#if !defined(_WIN32)
#include "platform/host.h"
#endif

namespace tarntest {

// Where a test that often waits for the disk may have its folder instead, if the system has such a place.
constexpr const char* inMemory = "/dev/shm";

// A folder for one test, removed with the object.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& wished = {})
        : path_(std::filesystem::is_directory(wished) ? wished : std::filesystem::temp_directory_path()) {
        path_ /= "tarnutil-" + std::to_string(std::random_device{}());
        std::filesystem::create_directory(path_);
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

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

// What the C library answers in its own locale, whatever locale the tests run in.
template <class Call>
auto inCLocale(Call call) {
    const std::string before = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, "C");
    auto answer = call();
    std::setlocale(LC_NUMERIC, before.c_str());
    return answer;
}
inline double numberOf(const char* text) {
    return inCLocale([&] { return std::strtod(text, nullptr); });
}

// As the format "%.10g" shows it, in every locale.
inline std::string shown(double answer) {
    char text[40];
    return {text, std::to_chars(text, text + sizeof text, answer, std::chars_format::general, 10).ptr};
}

// Sets a variable of the environment, or removes it for NULL.  TZ is the zone of local time from then on;
// UTC0 and EST5EDT are names that POSIX and Windows share.
#if defined(_WIN32)
constexpr bool onWindows = true;
inline void setEnvironment(const char* name, const char* value) {
    _putenv_s(name, value == nullptr ? "" : value);
    ::_tzset();
}
inline void holdClock(const SYSTEMTIME*) {}
#else
constexpr bool onWindows = false;
inline void setEnvironment(const char* name, const char* value) {
    if (value == nullptr) {
        ::unsetenv(name);
    } else {
        ::setenv(name, value, 1);
    }
    ::tzset();
}
inline void holdClock(const SYSTEMTIME* now) {
    tarn::setClock(now, now);
}
#endif

// Holds the zone of local time until the end of the test.
struct HeldZone {
    const std::string before = std::getenv("TZ") == nullptr ? "" : std::getenv("TZ");

    explicit HeldZone(const char* zone) { setEnvironment("TZ", zone); }
    ~HeldZone() { setEnvironment("TZ", before.empty() ? nullptr : before.c_str()); }
};

// Holds the clock, for universal and local time alike, at a moment until the end of the test.
struct HeldClock {
    static constexpr bool possible = !onWindows;

    HeldClock(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
        const auto word = [](int number) { return static_cast<WORD>(number); };
        const SYSTEMTIME now{word(year),   word(month),  0, word(day), word(hour),
                             word(minute), word(second), 0};
        holdClock(&now);
    }
    ~HeldClock() { holdClock(nullptr); }
};

}  // namespace tarntest
