// Owning a file descriptor, and repeating host calls that a signal interrupts.
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

  /// Returns false and sets `errno` if the host lost data. The descriptor is closed in any case:
  /// the host closes it even if a signal interrupts the call.
  bool Close() {
    return !IsOpen() || ::close(std::exchange(number_, kNone)) == 0 || errno == EINTR;
  }

 private:
  static constexpr int kNone = -1;
  int number_ = kNone;
};

/// Repeats a host call as long as signals interrupt it, which happens on network volumes.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// Repeats a host call as long as signals interrupt it. Returns 0 or the host's error.
///
/// On a network volume, a call may have done its work although it reports an interruption. The
/// repeated call then fails with `error_if_done`. This counts as success if `is_done` returns true.
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
