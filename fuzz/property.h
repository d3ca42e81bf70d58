#pragma once

// What the fuzz targets share: properties that have to hold, the input taken apart, the memory that a call
// takes, and files in memory.
//
// No standard stream, map or list may be used here or in a target that runs under the memory sanitizer: their
// code is in the standard library, which isn't instrumented, and what it writes would count as uninitialised.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#if defined(__has_feature)
#define TARN_HAS_FEATURE(name) __has_feature(name)
#else
#define TARN_HAS_FEATURE(name) 0
#endif

#if TARN_HAS_FEATURE(memory_sanitizer)
#include <sanitizer/msan_interface.h>

#include <charconv>

// Takes the place of std::to_chars for doubles (fuzz/CMakeLists.txt) and marks what that has written.
extern "C" {
std::to_chars_result __real__ZSt8to_charsPcS_dSt12chars_formati(char*, char*, double, std::chars_format, int);
[[gnu::used]] inline std::to_chars_result __wrap__ZSt8to_charsPcS_dSt12chars_formati(char* first, char* last,
                                                                                     double value,
                                                                                     std::chars_format format,
                                                                                     int precision) {
    const auto result = __real__ZSt8to_charsPcS_dSt12chars_formati(first, last, value, format, precision);
    __msan_unpoison(first, static_cast<std::size_t>(result.ptr - first));
    return result;
}
}
#endif

extern "C" {
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Of the address and memory sanitizers; NULL without one.
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, std::size_t),
                                                            void (*)(const volatile void*));
[[gnu::weak]] std::size_t __sanitizer_get_allocated_size(const volatile void*);
}

namespace tarnfuzz {

inline void require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "violated: %s\n", property);
    std::abort();
}

// Two texts that have to be equal; what they are from the first difference on is shown if they aren't.
inline void requireSame(std::string_view answer, std::string_view expected, const char* property) {
    if (answer == expected) return;
    const auto same = std::mismatch(answer.begin(), answer.end(), expected.begin(), expected.end()).first;
    for (const std::string_view text : {answer, expected}) {
        std::fprintf(stderr, text.data() == answer.data() ? "answer:   " : "expected: ");
        for (const char c : text.substr(static_cast<std::size_t>(same - answer.begin()), 100))
            std::fprintf(stderr, c >= ' ' && c <= '~' ? "%c" : "\\x%02x", static_cast<unsigned char>(c));
        std::fprintf(stderr, "\n");
    }
    require(false, property);
}

// As the library reads whole numbers.
inline std::int32_t wholeNumber(const std::string& text) {
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long long>(number, INT32_MIN, INT32_MAX));
}

// As strtod; some libraries keep the sign of a number that isn't there.
inline double decimal(const std::string& text) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return end == text.c_str() ? 0.0 : number;
}

// Both numbers, or neither, and the same bits but for the sign of what is no number.
inline bool sameNumber(double a, double b) {
    return (a != a && b != b) || std::memcmp(&a, &b, sizeof a) == 0;
}

// An input, taken apart from its front.  What it doesn't have reads as 0 and as empty.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool isEmpty() const { return rest_.empty(); }

    unsigned byte() {
        if (rest_.empty()) return 0;
        const auto first = static_cast<unsigned char>(rest_.front());
        rest_.remove_prefix(1);
        return first;
    }
    std::uint32_t word() {
        std::uint32_t number = 0;
        for (unsigned shift = 0; shift < 32; shift += 8) number |= std::uint32_t{byte()} << shift;
        return number;
    }
    // The next line up to a NUL at most, without its line feed.
    std::string text() {
        const std::size_t end = std::min(rest_.find('\n'), rest_.size());
        const std::string line(rest_.substr(0, end));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return line.c_str();
    }
    std::string rest() { return std::string(std::exchange(rest_, {})); }

  private:
    std::string_view rest_;
};

// A text in a block of its own with just `room` bytes behind its NUL, so that the sanitizers see what is read
// or written beyond.
class Text {
  public:
    explicit Text(std::string_view text, std::size_t room = 0) : block_(new char[text.size() + 1 + room]) {
        text.copy(block_.get(), text.size());
        block_[text.size()] = '\0';
    }
    [[nodiscard]] char* get() const { return block_.get(); }
    [[nodiscard]] std::string copy() const { return block_.get(); }

  private:
    std::unique_ptr<char[]> block_;
};

// The highest total of what is allocated at one time, from the beginning of the object on.  The sanitizers
// report it; where there is none, the operators of fuzz/replay.cpp do.
class MemoryWatch {
  public:
    MemoryWatch() : start_(now_) {
        static const bool isInstalled = __sanitizer_install_malloc_and_free_hooks != nullptr &&
                                        __sanitizer_install_malloc_and_free_hooks(onMalloc, onFree) != 0;
        static_cast<void>(isInstalled);
        most_ = now_;
    }
    // The headers allow 64 MiB beside so many times the file; inputs are far too short for that to say
    // anything.
    //   more  what the content of the file promises, beside its size
    void requireWithin(std::size_t timesTheFile, std::size_t fileSize, std::size_t more = 0) const {
        constexpr std::size_t spare = 16 << 10;
        require(most_ - start_ <= static_cast<std::ptrdiff_t>(timesTheFile * fileSize + spare + more),
                "a reader keeps within its memory");
    }

    static void count(std::ptrdiff_t bytes) {
        now_ += bytes;
        most_ = std::max(most_, now_);
    }

  private:
    static void onMalloc(const volatile void*, std::size_t size) { count(static_cast<std::ptrdiff_t>(size)); }
    static void onFree(const volatile void* block) {
        if (block != nullptr) count(-static_cast<std::ptrdiff_t>(__sanitizer_get_allocated_size(block)));
    }

    static inline std::ptrdiff_t now_ = 0;
    static inline std::ptrdiff_t most_ = 0;
    std::ptrdiff_t start_;
};

// A file that nobody else sees and that is gone with the process.
class MemoryFile {
  public:
    MemoryFile() : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
        path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { ::close(descriptor_); }

    [[nodiscard]] const char* path() const { return path_.c_str(); }
    void fill(std::string_view content) const {
        require(::ftruncate(descriptor_, 0) == 0, "the file is emptied");
        const auto size = static_cast<ssize_t>(content.size());
        require(::pwrite(descriptor_, content.data(), content.size(), 0) == size, "and takes the input");
    }
    [[nodiscard]] std::string content() const {
        std::string bytes(static_cast<std::size_t>(::lseek(descriptor_, 0, SEEK_END)), '\0');
        const auto size = static_cast<ssize_t>(bytes.size());
        require(::pread(descriptor_, bytes.data(), bytes.size(), 0) == size, "the file gives its bytes");
        return bytes;
    }

  private:
    int descriptor_;
    std::string path_;
};

}  // namespace tarnfuzz
