// Lists daybook files with any content, and adds an entry to them. A command does its work or
// reports an error. A list never changes the file, and a new entry never changes a finished block.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>

#include "Require.h"
#include "daybook/Commands.h"
#include "daybook/Record.h"
#include "support/FakeHost.h"
#include "support/TestFiles.h"
#include "terminal/Failure.h"

namespace {

// Writes the CRC-32 of all other bytes into the last four, computed bit by bit.
void Seal(char (&block)[kBlockSize]) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 0; i < kBlockSize - sizeof crc; ++i) {
    crc ^= static_cast<unsigned char>(block[i]);
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
  }
  crc = ~crc;
  std::memcpy(block + kBlockSize - sizeof crc, &crc, sizeof crc);
}

// Makes the blocks of a file from short pieces of the input. The first byte of a piece decides
// whether the block has a right checksum. The first byte of the input decides whether the file
// begins with a right header, and how much of the last block is cut off.
std::string MakeFile(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kPiece = 24;
  constexpr unsigned kRealHeader = 0x10;
  std::string file;
  const unsigned flags = *data;
  if ((flags & kRealHeader) != 0) {
    const Header header = MakeHeader(1);
    file.assign(reinterpret_cast<const char*>(&header), sizeof header);
  }
  for (std::size_t at = 1; at < size; at += kPiece) {
    char block[kBlockSize] = {};
    std::memcpy(block, data + at + 1, std::min(kPiece, size - at) - 1);
    if (data[at] % 4 != 0) Seal(block);
    file.append(block, sizeof block);
  }
  const std::size_t cut = (flags & 0xF) * kBlockSize / 16;
  file.resize(file.size() - std::min(cut, file.size()));
  return file;
}

// The bytes that a new entry must not change. At the end of a file, blocks of zeros and a block
// that is cut off were never finished.
std::size_t FinishedBytes(const std::string& file) {
  const std::size_t whole = file.size() / kBlockSize * kBlockSize;
  const std::size_t last = file.substr(0, whole).find_last_not_of('\0');
  return last == std::string::npos ? 0 : (last / kBlockSize + 1) * kBlockSize;
}

// Returns false if the command reported an error.
bool Succeeds(ExitStatus (*run)(const Options&), const std::vector<std::string>& arguments) {
  static const std::vector<Option> kKnown = {
      {"--date", "D", ""}, {"--from", "D", ""}, {"--to", "D", ""}};
  try {
    return run(Options(arguments, kKnown)) == kSuccess;
  } catch (const Failure&) {
  } catch (const Rejection&) {
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static const TestDirectory directory;
  FakeHost host;  // always the same day, so that a finding can be repeated, and no message boxes
  host.SetNow(2026, 11, 18);
  std::ostringstream shown;  // nobody sees it
  if (size == 0) return 0;
  std::streambuf* const real = std::cout.rdbuf(shown.rdbuf());
  const std::string before = MakeFile(data, size);
  const std::string path = directory.Write("file", before);

  Succeeds(RunList, {path, "--from", "jan 1 2026", "--to", "+3 m"});
  Require(directory.Read("file") == before);

  const bool added = Succeeds(RunAdd, {path, "--date", "tomorrow", "one", "more"});
  const std::string after = directory.Read("file");
  const std::size_t kept = added ? FinishedBytes(before) : before.size();
  Require(before.compare(0, kept, after, 0, kept) == 0);
  Require(added ? after.size() >= kept + kBlockSize : after.size() == kept);
  std::cout.rdbuf(real);
  return 0;
}
