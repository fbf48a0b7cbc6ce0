#include <iostream>

#include "Commands.h"
#include "Store.h"
#include "fields/FieldKinds.h"
#include "terminal/MonthGrid.h"
#include "terminal/Terminal.h"

std::string ExplainMonth() {
  return "DATE is any day of the month, such as 'dec 1' or '+1 mo'. Without it, the command shows\n"
         "this month. Marks: * has entries, [ ] is today. Weeks begin on Monday where the day\n"
         "comes before the month, as with --day-first.\n";
}

ExitStatus RunMonth(const Options& options) {
  const Settings settings(options);
  const std::size_t words = options.Words().size();
  un_date_time first = OZDate::CurDateTime();
  if (words > 1) first = ReadDate(options.Text(1, words), first, settings);
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
