#include "terminal/TerminalHost.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <new>
#include <thread>

#include "terminal/Box.h"
#include "terminal/Terminal.h"

bool TerminalHost::StopClock(const std::string& text) {
  constexpr int kFirstYear = 1753 - 1900;  // of the library's calendar
  constexpr int kLastYear = 2099 - 1900;
  std::tm moment{};
  const char* const end = strptime(text.c_str(), "%Y-%m-%d %H:%M", &moment);
  if (end == nullptr || *end != '\0') return false;
  std::tm carried = moment;
  timegm(&carried);  // moves a day such as 30 February to the next month
  const bool is_date = carried.tm_mday == moment.tm_mday && moment.tm_year >= kFirstYear &&
                       moment.tm_year <= kLastYear;
  if (is_date) now_ = moment;
  return is_date;
}

int TerminalHost::MessageBoxA(void* owner, const char* text, const char* caption,
                              unsigned int style) {
  constexpr int kOk = 1;
  constexpr int kEdges = 4;
  constexpr int kLeast = 20;
  constexpr int kMost = 72;
  const int columns = std::clamp(TerminalWidth(STDERR_FILENO) - kEdges, kLeast, kMost);
  try {
    std::cerr << DrawBox(text, caption != nullptr ? caption : "", columns,
                         HasBoxCharacters() ? kLineFrame : kAsciiFrame);
    return kOk;
  } catch (const std::bad_alloc&) {  // the box of the default host needs no memory
    return OZHost::MessageBoxA(owner, text, caption, style);
  }
}

std::uint32_t TerminalHost::GetTickCount() {
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  return OZHost::GetTickCount();
}
