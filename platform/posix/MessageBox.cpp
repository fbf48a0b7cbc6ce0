// The default message box and its sound. Both go to standard error.
#include <unistd.h>

#include <cstdio>

#include "orzcore/platform.h"

int OZHost::MessageBoxA(void* /*owner*/, const char* text, const char* caption,
                        unsigned int /*style*/) {
  if (caption != nullptr) std::fprintf(stderr, "%s: ", caption);
  std::fprintf(stderr, "%s\n", text);
  return 0;
}

void OZHost::MessageBeep(unsigned int /*type*/) {
  if (isatty(STDERR_FILENO) != 0) std::fputc('\a', stderr);
}

void* OZHost::GetActiveWindow() { return nullptr; }
