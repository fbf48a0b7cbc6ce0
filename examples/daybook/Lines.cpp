#include "Lines.h"

#include <cerrno>
#include <filesystem>

#include "Failure.h"

namespace {

struct ErrorRow {
  int number;
  OZError error;
};

// What the system says when it does not open a file. Every other number is a fault in reading.
constexpr ErrorRow kErrors[] = {
    {ENOENT, eErrNoSuchFile},    {ENOTDIR, eErrNoSuchPath},   {EACCES, eErrNoRights},
    {EPERM, eErrNoRights},       {EMFILE, eErrNoFileHandles}, {ENFILE, eErrNoFileHandles},
    {ENAMETOOLONG, eErrNotOpen}, {ELOOP, eErrNotOpen},        {ENOMEM, eErrOutOfMemory},
};

OZError ErrorOf(int number, const std::filesystem::path& path) {
  // The system has one number for a missing file and for a missing directory on the way to it.
  std::error_code unknown;
  const bool in_directory = !path.has_parent_path() || exists(path.parent_path(), unknown);
  if (number == ENOENT && !in_directory) return eErrNoSuchPath;
  for (const ErrorRow& row : kErrors) {
    if (row.number == number) return row.error;
  }
  return eErrRead;
}

}  // namespace

OpenedFile OpenLines(const std::string& path) {
  OpenedFile file(std::fopen(path.c_str(), "re"));
  const int number = errno;
  if (file != nullptr) return file;
  throw Failure{ErrorOf(number, path), "Opening the file", __FILE__, __LINE__};
}

bool ReadLine(std::FILE* file, std::string* line) {
  line->clear();
  int character = std::getc(file);
  for (; character != EOF && character != '\n'; character = std::getc(file)) {
    line->push_back(static_cast<char>(character));
  }
  if (std::ferror(file) != 0) throw Failure{eErrRead, "Reading the texts", __FILE__, __LINE__};
  return character != EOF || !line->empty();
}
