// Shared files.
#pragma once

#include <cstdint>

#include "orzcore/export.h"
#include "orzcore/frame.h"

/// A file that several users may have open at the same time.
class ORZCORE_API OZFile {
 public:
  /// Turns an error number of the system into an `OZError`; one that is not known becomes 231.
  static OZError MapWinErrorToOZErr(std::uint32_t win_error);

  /// Turns an error number of the runtime into an `OZError`; one that is not known becomes 231.
  ///
  /// @param errno_value  in the runtime numbering of the file operations: 2 no such file, 5 access
  ///                     denied, 28 disk full, 35 file exists
  static OZError MapErrnoToOZErr(std::int32_t errno_value);

  /// Turns a status number into an `OZError`; one that is not known becomes 231. Numbers below 19
  /// are those of the runtime.
  static OZError MapFinfoToOZErr(unsigned short finfo);
};
