// Paths as values: dividing, joining and replacing their parts.
#include <cstddef>
#include <cstring>
#include <new>

#include "orzcore/filespec.h"
#include "orzcore/foundation.h"

namespace {

constexpr short kMaxFullPath = 514;              // what GetFullPath copies at most
constexpr short kMaxFileName = 259;              // what GetFileName copies at most
constexpr std::size_t kMaxJoinedPath = 515;      // what a setter makes at most of pieces
constexpr std::size_t kMaxJoinedFileName = 263;  // what SetExtension makes at most

std::size_t DirectoryLength(const char* path) {
  const char* const last = std::strrchr(path, '\\');
  return last != nullptr ? static_cast<std::size_t>(last - path) + 1 : 0;
}

// A text put together from pieces. It keeps the pieces alive while the path they may lie in
// changes.
template <std::size_t kMaxLength>
class JoinedText {
 public:
  void Append(const char* piece, std::size_t length) {
    if (length > kMaxLength - mLength) {
      mFits = false;
      return;
    }
    std::memcpy(mText + mLength, piece, length);
    mLength += length;
    mText[mLength] = '\0';
  }
  void Append(const char* piece) { Append(piece, std::strlen(piece)); }

  bool EndsWith(char last) const { return mLength > 0 && mText[mLength - 1] == last; }

  // Null if the pieces did not fit: the path becomes empty, since a cut one could be another
  // file's.
  const char* Text() const { return mFits ? mText : nullptr; }

 private:
  std::size_t mLength = 0;
  bool mFits = true;
  char mText[kMaxLength + 1] = {};
};

using JoinedPath = JoinedText<kMaxJoinedPath>;
using JoinedFileName = JoinedText<kMaxJoinedFileName>;

}  // namespace

OZFileSpec::OZFileSpec(const char* fullPath) { SetFullPath(fullPath); }

OZFileSpec::OZFileSpec(const char* directory, const char* fileName) {
  SetPath(directory, fileName);
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
  String_copy(buffer, GetFullPath(), kMaxFullPath, 1);
  return buffer;
}

char* OZFileSpec::GetDirectory(char* buffer) const {
  const char* const path = GetFullPath();
  const std::size_t length = DirectoryLength(path);
  std::memcpy(buffer, path, length);
  buffer[length] = '\0';
  return buffer;
}

char* OZFileSpec::GetFileName(char* buffer) const {
  const char* const path = GetFullPath();
  String_copy(buffer, path + DirectoryLength(path), kMaxFileName, 1);
  return buffer;
}

void OZFileSpec::SetFullPath(const char* fullPath) {
  char* copy = nullptr;
  if (fullPath != nullptr && *fullPath != '\0') {
    const std::size_t size = std::strlen(fullPath) + 1;
    copy = new (std::nothrow) char[size];
    if (copy != nullptr) std::memcpy(copy, fullPath, size);
  }
  Clear();  // only now, since the new path may lie in the old one
  mFullPath = copy;
}

void OZFileSpec::SetDirectory(const char* directory) {
  JoinedPath path;
  if (directory != nullptr && *directory != '\0') {
    path.Append(directory);
    if (!path.EndsWith('\\')) path.Append("\\");
  }
  char file_name[kMaxFileName + 1];
  path.Append(GetFileName(file_name));
  SetFullPath(path.Text());
}

void OZFileSpec::SetFileName(const char* fileName) {
  JoinedPath path;
  path.Append(GetFullPath(), DirectoryLength(GetFullPath()));
  if (fileName != nullptr) path.Append(fileName);
  SetFullPath(path.Text());
}

void OZFileSpec::SetExtension(const char* extension) {
  char file_name[kMaxFileName + 1];
  GetFileName(file_name);
  char* const dot = std::strrchr(file_name, '.');
  if (dot != nullptr) *dot = '\0';

  JoinedFileName renamed;
  renamed.Append(file_name);
  if (extension != nullptr) renamed.Append(extension);
  if (renamed.Text() == nullptr) {
    Clear();  // a null file name would leave the directory
    return;
  }
  SetFileName(renamed.Text());
}

void OZFileSpec::SetPath(const char* directory, const char* fileName) {
  JoinedPath path;
  path.Append(directory);
  path.Append(fileName);
  SetFullPath(path.Text());
}
