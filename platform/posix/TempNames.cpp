// Names for temporary files.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "platform/files.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/HostErrors.h"
#include "platform/posix/NativePath.h"

namespace orzcore::platform {
namespace {

constexpr char kDefaultDirectory[] = "/tmp";
constexpr std::uint32_t kLastNumber = 0xFFFF;
constexpr std::size_t kPrefixLength = 3;
constexpr std::size_t kNameSize = sizeof("/preFFFF.TMP");
constexpr mode_t kPrivateMode = 0600;  // the directory is shared with other users

// Returns TMPDIR if `CreateFileA` can open files in it, else the default. `CreateFileA` takes `\`
// as a separator, and its paths have a limited length.
const char* TempDirectory() {
  const char* const directory = std::getenv("TMPDIR");
  const bool is_usable = directory != nullptr && *directory != '\0' &&
                         std::strchr(directory, '\\') == nullptr &&
                         std::strlen(directory) + kNameSize < kFullPathSize;
  return is_usable ? directory : kDefaultDirectory;
}

const char* SeparatorAfter(const char* directory) {
  const std::size_t length = std::strlen(directory);
  return length > 0 && directory[length - 1] == '/' ? "" : "/";
}

// Returns a different number at each call, so that the search for a free number is short.
std::uint32_t FirstNumber() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint32_t>(now.tv_nsec) / 64 + static_cast<std::uint32_t>(getpid());
}

// The first three characters of a prefix, without separators.
struct NameStart {
  explicit NameStart(const char* prefix) {
    std::size_t length = 0;
    for (; *prefix != '\0' && length < kPrefixLength; ++prefix) {
      if (*prefix != '/' && *prefix != '\\') text[length++] = *prefix;
    }
  }
  char text[kPrefixLength + 1] = {};
};

// Writes the path with this number. Returns false if it is too long.
bool WritePath(const NativePath& directory, const NameStart& start, std::uint32_t number,
               char* buffer) {
  const int length = std::snprintf(buffer, kFullPathSize, "%s%s%s%04X.TMP", directory.Text(),
                                   SeparatorAfter(directory.Text()), start.text,
                                   static_cast<unsigned int>(number));
  return length >= 0 && static_cast<std::uint32_t>(length) < kFullPathSize;
}

int CreateEmpty(const char* path) {
  constexpr int kFlags = O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC;
  const Descriptor file(Uninterrupted([&] { return ::open(path, kFlags, kPrivateMode); }));
  return file.IsOpen() ? 0 : errno;
}

std::uint32_t FailToName(int host_error, char* buffer) {
  *buffer = '\0';
  FailWithHost(host_error);
  return 0;
}

}  // namespace

std::uint32_t GetTempPathA(std::uint32_t size, char* buffer) {
  const char* const directory = TempDirectory();
  const int written = std::snprintf(buffer, size, "%s%s", directory, SeparatorAfter(directory));
  const auto length = static_cast<std::uint32_t>(written);
  if (length < size) return length;
  if (size > 0) *buffer = '\0';
  return length + 1;
}

std::uint32_t GetTempFileNameA(const char* directory, const char* prefix, std::uint32_t unique,
                               char* buffer) {
  const NativePath native(directory);
  const NameStart start(prefix);
  if (native.Error() != 0) return FailToName(native.Error(), buffer);
  if (const std::uint32_t number = unique & kLastNumber; number != 0) {
    return WritePath(native, start, number, buffer) ? number : FailToName(ENAMETOOLONG, buffer);
  }
  const std::uint32_t first = FirstNumber();
  for (std::uint32_t i = 0; i < kLastNumber; ++i) {
    const std::uint32_t number = 1 + (first + i) % kLastNumber;
    if (!WritePath(native, start, number, buffer)) return FailToName(ENAMETOOLONG, buffer);
    const int error = CreateEmpty(buffer);
    if (error == 0) return number;
    if (error != EEXIST) return FailToName(error, buffer);
  }
  return FailToName(EEXIST, buffer);
}

}  // namespace orzcore::platform
