// Decides when the default host reads the time zone and the regional settings again. The user can
// change both while the program runs.
#pragma once

#include <cstdint>
#include <ctime>

namespace orzcore::platform {

/// How many times `OZHost::Install` was called.
extern constinit std::uint32_t gInstallCount;

/// Lets a setting be read once a minute, and at once after `OZHost::Install`.
class RefreshTimer {
 public:
  /// Returns true if the setting must be read now: a minute is over, a host was installed, the
  /// clock was set back, or the setting was never read.
  bool IsDue(std::time_t now) const {
    return now < start_ || now - start_ >= kSeconds || install_count_ != gInstallCount;
  }

  /// To be called after the setting was read. The next minute counts from `start`.
  void Restart(std::time_t start) {
    start_ = start;
    install_count_ = gInstallCount;
  }

  /// The `start` of the last `Restart`.
  std::time_t Start() const { return start_; }

 private:
  static constexpr int kSeconds = 60;

  std::time_t start_ = 0;
  std::uint32_t install_count_ = 0;
};

}  // namespace orzcore::platform
