#include <filesystem>
#include <iostream>

#include "Commands.h"
#include "Store.h"
#include "icalendar/ICalendar.h"
#include "terminal/Print.h"

// The part of the events' ids that tells files apart. Files of older versions have no identifier.
// Then it comes from the path, and says nothing about the directories.
static std::string IdOfFile(const std::string& path, std::uint64_t stored) {
  if (stored != 0) return std::to_string(stored) + ".daybook";
  constexpr std::uint64_t kFnvOffset = 14695981039346656037U;
  constexpr std::uint64_t kFnvPrime = 1099511628211U;
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::canonical(path, error);
  std::uint64_t hash = kFnvOffset;
  for (const char byte : error ? path : whole.generic_string()) {
    hash = (hash ^ static_cast<unsigned char>(byte)) * kFnvPrime;
  }
  return std::to_string(hash) + ".daybook";
}

std::string ExplainExport() {
  return "Write FILE as iCalendar to standard output, for other calendar programs. A rule that\n"
         "iCalendar cannot say is written as its first " +
         std::to_string(kMostEventDates) + " dates.\n";
}

ExitStatus RunExport(const Options& options) {
  const std::string& path = options.Words().front();
  const Store::Contents contents = Store(options, Store::kReading).ReadAll();
  const std::string file = IdOfFile(path, contents.file_id);
  BeginCalendar(std::cout, "daybook");
  for (const auto& [id, entry] : contents.entries) {
    const auto dates = DatesOf(entry, OZDate::BegOfTime, OZDate::EndOfTime);
    const std::string begin = "daybook: entry " + std::to_string(id) + " has ";
    if (dates.empty()) {
      std::cerr << begin << "no date, and is not exported\n";
    } else if (!WriteEvent(std::cout, {.id = std::to_string(id) + '@' + file,
                                       .text = entry.text,
                                       .dates = dates,
                                       .rule = entry.rule,
                                       .minutes = entry.minutes,
                                       .priority = entry.priority,
                                       .done = entry.done})) {
      std::cerr << begin << "only its first " << kMostEventDates << " dates, to "
                << IsoDate(dates[kMostEventDates - 1]) << ", since iCalendar cannot say its rule\n";
    }
  }
  EndCalendar(std::cout);
  return ReportDamage(path, contents);
}
