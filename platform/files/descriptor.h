#pragma once

// The owner of a file descriptor, and the one place that calls again after a signal, for the layer itself.
// Programs hold files by the handles of platform/win32.h.

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tarn {

// Calls again as long as a signal interrupts.
template <typename Call>
auto retried(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

// An open descriptor that is closed with the object; -1 is none.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ != -1) ::close(number_);
    }

    [[nodiscard]] int number() const { return number_; }
    // Leaves the closing to the caller.
    [[nodiscard]] int release() { return std::exchange(number_, -1); }
    explicit operator bool() const { return number_ != -1; }

  private:
    int number_;
};

}  // namespace tarn
