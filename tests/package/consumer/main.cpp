// A program of two files. Both include all headers, which must not define anything twice.
#include <orzcore/calendar.h>
#include <orzcore/feedback.h>
#include <orzcore/file.h>
#include <orzcore/filespec.h>
#include <orzcore/foundation.h>
#include <orzcore/frame.h>
#include <orzcore/parser.h>
#include <orzcore/platform.h>

#include <cstdio>

int Parse(const char* text);

int main() {
  un_date_time date = un_date_time::Of(2024, 1, 31);
  OZDate::DateFwrd(&date, 1, 'M');
  std::printf("%u %d\n", static_cast<unsigned>(date.day), Parse("42"));
}
