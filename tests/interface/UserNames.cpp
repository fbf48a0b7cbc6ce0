// A program with functions of its own whose names the library once used, too. It is linked to the
// static library. Neither side may call the function of the other.
#include <cstdio>
#include <string_view>

#include "orzcore/file.h"
#include "orzcore/parser.h"

bool RestorePosition(void* /*handle*/, std::uint32_t /*position*/) { return true; }

namespace parser {
short FindMonth(std::string_view /*name*/) { return 1; }
}  // namespace parser

int main() {
  OZFile file;
  std::int32_t position = 0;
  unsigned short count = 0;
  const bool keeps_position = file.CreateFileA("user-names.tmp", 0) == eErrNone &&
                              file.Write("12345", 5, &count) == eErrNone &&
                              file.flushFile() == eErrNone &&
                              file.Seek(0, OZ_SEEK_CURRENT, &position) == eErrNone && position == 5;
  file.DeleteFileA();
  const bool knows_months = OZParser::fndmth("MARCH") == 3;
  std::printf("position %d, months %s\n", static_cast<int>(position), knows_months ? "3" : "?");
  return keeps_position && knows_months ? 0 : 1;
}
