#include <cctype>
#include <iostream>

#include "Commands.h"
#include "Store.h"
#include "fields/FieldKinds.h"
#include "terminal/MonthGrid.h"
#include "terminal/Terminal.h"

std::string ExplainMonth() {
  return "DATE is a month or any day of it, such as 'dec', 'feb 2027' or '+1 mo'. Without it,\n"
         "the command shows this month. Marks: * has entries, [ ] is today. Weeks begin on\n"
         "Monday where the day comes before the month, as with --day-first.\n";
}

// Reads a date, or the name of a month with or without a year.
static un_date_time ReadMonth(const std::string& text, const Settings& settings) {
  const un_date_time today = OZDate::CurDateTime();
  try {
    return ReadDate(text, today, settings);
  } catch (const Rejection& rejection) {
    if (std::isalpha(static_cast<unsigned char>(text.front())) == 0) throw;
    try {
      return ReadDate("1 " + text, today, settings);
    } catch (const Rejection&) {
      throw rejection;
    }
  }
}

ExitStatus RunMonth(const Options& options) {
  const Settings settings(options);
  const std::size_t words = options.Words().size();
  un_date_time first = OZDate::CurDateTime();
  if (words > 1) first = ReadMonth(options.Text(1, words), settings);
  first.day = 1;
  un_date_time last = first;
  last.day = OZDate::DaysInMonth(static_cast<unsigned short>(first.month - 1),
                                 static_cast<unsigned short>(first.year)) &
             0x1F;
  const Store::Contents contents = Store(options, Store::kReading).ReadAll();
  std::set<unsigned int> marked;
  for (const auto& [id, entry] : contents.entries) {
    for (const un_date_time& date : DatesOf(entry, first, last)) marked.insert(date.day);
  }
  std::cout << DrawMonth(first, marked, settings.WeekStart(), HasColors());
  return ReportDamage(options.Words().front(), contents);
}
