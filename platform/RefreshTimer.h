// When the default host reads again what the user can change: the time zone and the regional
// settings.
#pragma once

#include <cstdint>
#include <ctime>

namespace orzcore::platform {

/// How often a host was installed.
extern constinit std::uint32_t gInstallCount;

/// Limits the reading of a setting to once a minute. `OZHost::Install` makes it due at once.
class RefreshTimer {
 public:
  /// Whether the setting must be read now: a minute is over, a host was installed, the clock was set
  /// back, or the setting was never read.
  bool IsDue(std::time_t now) const {
    return now < start_ || now - start_ >= kSeconds || install_count_ != gInstallCount;
  }

  /// Notes that the setting was read, and that its minute began at `start`.
  void Restart(std::time_t start) {
    start_ = start;
    install_count_ = gInstallCount;
  }

  /// When the minute began.
  std::time_t Start() const { return start_; }

 private:
  static constexpr int kSeconds = 60;

  std::time_t start_ = 0;
  std::uint32_t install_count_ = 0;
};

}  // namespace orzcore::platform
