#include "terminal/Path.h"

#include <algorithm>
#include <filesystem>

#include "terminal/Command.h"

void ExplainPath(const std::string& path, const std::string& wanted) {
  if (path.empty()) throw Rejection("the name of the " + wanted + " is empty");
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw Rejection("'" + path + "' is a directory, not a " + wanted);
  }
  if (error == std::errc::filename_too_long) {
    throw Rejection("the name '" + path + "' is too long for the disk");
  }
  const std::size_t slash = path.find_last_of("/\\");
  if (slash == std::string::npos) return;
  const std::string directory = path.substr(0, slash);
  std::string plain = directory;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  if (plain.empty() || std::filesystem::is_directory(plain, error)) return;
  throw Rejection("there is no directory '" + directory + "' for '" + path + "'" +
                  (path[slash] == '\\' ? "; a '\\' separates directories, as '/' does" : ""));
}
