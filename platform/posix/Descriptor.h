// The owner of a file descriptor.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace orzcore::platform {

/// Closes its descriptor when it is destroyed, which releases all locks of the descriptor.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, kNone)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }

  /// Returns false and sets `errno` if the host lost data. The descriptor is closed in any case,
  /// also if a signal interrupts the call.
  bool Close() {
    return !IsOpen() || ::close(std::exchange(number_, kNone)) == 0 || errno == EINTR;
  }

 private:
  static constexpr int kNone = -1;
  int number_ = kNone;
};

/// Repeats a host call as long as signals interrupt it. On some volumes they can.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// Calls the host until no signal interrupts the call, and returns 0 or the host's error.
///
/// On a network volume an interrupted call may have been done. Its repetition then fails with
/// `error_if_done`, and `is_done` finds out.
template <typename Call, typename IsDone>
int ErrorOfRepeated(Call call, int error_if_done, IsDone is_done) {
  bool was_interrupted = false;
  while (call() != 0) {
    const int error = errno;
    if (error != EINTR) return was_interrupted && error == error_if_done && is_done() ? 0 : error;
    was_interrupted = true;
  }
  return 0;
}

}  // namespace orzcore::platform
