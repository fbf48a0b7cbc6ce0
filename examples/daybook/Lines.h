// Reading a text by lines.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using OpenedFile = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file for reading. Throws `Failure`.
OpenedFile OpenLines(const std::string& path);

/// Reads the next line, without its end. Returns false if there is none; throws `Failure` if the
/// file cannot be read.
bool ReadLine(std::FILE* file, std::string* line);
