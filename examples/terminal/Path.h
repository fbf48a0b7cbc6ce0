// Names of files.
#pragma once

#include <string>

/// Throws `Rejection` if a path names something for which the library has no error of its own: a
/// directory, an empty name, one that is too long, or a directory that does not exist.
///
/// @param wanted  what the path should name, such as "text file"
void ExplainPath(const std::string& path, const std::string& wanted);
