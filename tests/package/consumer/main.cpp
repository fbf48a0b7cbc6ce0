// A program of two files.
#include <cstdio>

#include "AllHeaders.h"

int Parse(const char* text);

int main() {
  un_date_time date = un_date_time::Of(2024, 1, 31);
  OZDate::DateFwrd(&date, 1, 'M');
  std::printf("%u %d\n", static_cast<unsigned>(date.day), Parse("42"));
}
