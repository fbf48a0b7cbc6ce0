// Paths as values: dividing, joining and replacing their parts.
#include <cstddef>
#include <cstring>
#include <new>

#include "orzcore/filespec.h"
#include "orzcore/foundation.h"

namespace orzcore::file {
namespace {

// The longest texts, in characters without the terminator.
constexpr short kMaxFullPath = 514;              // `GetFullPath` copies no more
constexpr short kMaxFileName = 259;              // `GetFileName` copies no more
constexpr std::size_t kMaxJoinedPath = 515;      // the longest result of the setters
constexpr std::size_t kMaxJoinedFileName = 263;  // the longest file name of `SetExtension`

std::size_t DirectoryLength(const char* path) {
  const char* const last = std::strrchr(path, '\\');
  return last != nullptr ? static_cast<std::size_t>(last - path) + 1 : 0;
}

// Joins pieces into a text. It copies each piece, because a piece may be part of the path that the
// joined text then replaces.
template <std::size_t kMaxLength>
class JoinedText {
 public:
  void Append(const char* piece, std::size_t length) {
    if (length > kMaxLength - length_) {
      fits_ = false;
      return;
    }
    std::memcpy(text_ + length_, piece, length);
    length_ += length;
    text_[length_] = '\0';
  }
  void Append(const char* piece) { Append(piece, std::strlen(piece)); }

  bool EndsWith(char last) const { return length_ > 0 && text_[length_ - 1] == last; }

  // Returns null if the pieces did not fit: a cut path could name another file.
  const char* Text() const { return fits_ ? text_ : nullptr; }

 private:
  std::size_t length_ = 0;
  bool fits_ = true;
  char text_[kMaxLength + 1] = {};
};

using JoinedPath = JoinedText<kMaxJoinedPath>;
using JoinedFileName = JoinedText<kMaxJoinedFileName>;

}  // namespace
}  // namespace orzcore::file

namespace file = orzcore::file;

OZFileSpec::OZFileSpec(const char* full_path) { SetFullPath(full_path); }

OZFileSpec::OZFileSpec(const char* directory, const char* file_name) {
  SetPath(directory, file_name);
}

OZFileSpec::OZFileSpec(const OZFileSpec& other) { SetFullPath(other.mFullPath); }

OZFileSpec& OZFileSpec::operator=(const OZFileSpec& other) {
  if (this != &other) SetFullPath(other.mFullPath);
  return *this;
}

OZFileSpec::~OZFileSpec() { Clear(); }

void OZFileSpec::Clear() {
  delete[] mFullPath;
  mFullPath = nullptr;
}

char* OZFileSpec::GetFullPath(char* buffer) const {
  String_copy(buffer, GetFullPath(), file::kMaxFullPath, 1);
  return buffer;
}

char* OZFileSpec::GetDirectory(char* buffer) const {
  const char* const path = GetFullPath();
  const std::size_t length = file::DirectoryLength(path);
  std::memcpy(buffer, path, length);
  buffer[length] = '\0';
  return buffer;
}

char* OZFileSpec::GetFileName(char* buffer) const {
  const char* const path = GetFullPath();
  String_copy(buffer, path + file::DirectoryLength(path), file::kMaxFileName, 1);
  return buffer;
}

void OZFileSpec::SetFullPath(const char* full_path) {
  char* copy = nullptr;
  if (full_path != nullptr && *full_path != '\0') {
    const std::size_t size = std::strlen(full_path) + 1;
    copy = new (std::nothrow) char[size];
    if (copy != nullptr) std::memcpy(copy, full_path, size);
  }
  Clear();  // only now: the new path may be a part of the old one
  mFullPath = copy;
}

void OZFileSpec::SetDirectory(const char* directory) {
  file::JoinedPath path;
  if (directory != nullptr && *directory != '\0') {
    path.Append(directory);
    if (!path.EndsWith('\\')) path.Append("\\");
  }
  char file_name[file::kMaxFileName + 1];
  path.Append(GetFileName(file_name));
  SetFullPath(path.Text());
}

void OZFileSpec::SetFileName(const char* file_name) {
  file::JoinedPath path;
  path.Append(GetFullPath(), file::DirectoryLength(GetFullPath()));
  if (file_name != nullptr) path.Append(file_name);
  SetFullPath(path.Text());
}

void OZFileSpec::SetExtension(const char* extension) {
  char file_name[file::kMaxFileName + 1];
  GetFileName(file_name);
  char* const dot = std::strrchr(file_name, '.');
  if (dot != nullptr) *dot = '\0';

  file::JoinedFileName renamed;
  renamed.Append(file_name);
  if (extension != nullptr) renamed.Append(extension);
  if (renamed.Text() == nullptr) {
    Clear();  // `SetFileName(nullptr)` would keep the directory
    return;
  }
  SetFileName(renamed.Text());
}

void OZFileSpec::SetPath(const char* directory, const char* file_name) {
  file::JoinedPath path;
  path.Append(directory);
  path.Append(file_name);
  SetFullPath(path.Text());
}
