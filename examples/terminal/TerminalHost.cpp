#include "terminal/TerminalHost.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <new>
#include <sstream>
#include <thread>

#include "terminal/Box.h"
#include "terminal/Terminal.h"

bool TerminalHost::StopClock(const std::string& text) {
  constexpr int kFirstYear = 1753 - 1900;  // of the library's calendar
  constexpr int kLastYear = 2099 - 1900;
  std::tm moment{};
  // get_time also accepts a text that ends too early, so the minutes are looked for first.
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || colon + 1 == text.size()) return false;
  std::istringstream in(text);
  if (!(in >> std::get_time(&moment, "%Y-%m-%d %H:%M")) || in.peek() != EOF) return false;
  const std::chrono::year_month_day date(std::chrono::year(moment.tm_year + 1900),
                                         std::chrono::month(unsigned(moment.tm_mon + 1)),
                                         std::chrono::day(unsigned(moment.tm_mday)));
  const bool is_date = date.ok() && moment.tm_year >= kFirstYear && moment.tm_year <= kLastYear;
  if (is_date) {
    const std::chrono::weekday weekday{std::chrono::sys_days(date)};
    moment.tm_wday = static_cast<int>(weekday.c_encoding());
  }
  if (is_date) now_ = moment;
  return is_date;
}

int TerminalHost::MessageBoxA(void* owner, const char* text, const char* caption,
                              unsigned int style) {
  constexpr int kOk = 1;
  constexpr int kEdges = 4;
  constexpr int kLeast = 10;
  constexpr int kMost = 72;
  const int columns = std::clamp(TerminalWidth(Stream::kError) - kEdges, kLeast, kMost);
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
