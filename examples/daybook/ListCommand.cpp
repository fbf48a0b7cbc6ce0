#include <algorithm>
#include <iostream>
#include <tuple>

#include "Commands.h"
#include "Store.h"
#include "fields/FieldKinds.h"
#include "terminal/Print.h"
#include "terminal/Table.h"
#include "terminal/Text.h"

namespace {

// One date of an entry.
struct Row {
  un_date_time moment;
  int id;
  const Entry* entry;

  auto Order() const { return std::tuple(moment.Number(), entry->priority, id); }
};

// The first line, with the years if they are not this one.
std::string Heading(const un_date_time& from, const un_date_time& to) {
  const un_date_time today = OZDate::CurDateTime();
  const bool years = from.year != today.year || to.year != today.year;
  const auto text = years ? FullDate : DisplayDate;
  return text(from) + " to " + text(to);
}

// One line of JSON.
void PrintJson(const Row& row) {
  const Entry& entry = *row.entry;
  std::cout << R"({"id":)" << row.id << R"(,"date":")" << IsoDate(row.moment) << '"';
  if (entry.moment.time != OZDate::kNoTime) {
    std::cout << R"(,"time":")" << ClockTime(static_cast<int>(entry.moment.time)) << '"';
  }
  if (entry.minutes != 0) std::cout << R"(,"minutes":)" << entry.minutes;
  if (entry.priority != OZParser::kNoPriority) std::cout << R"(,"priority":)" << entry.priority;
  std::cout << R"(,"done":)" << (entry.done ? "true" : "false") << R"(,"recurs":)"
            << (entry.rule ? "true" : "false") << R"(,"text":)" << '"'
            << Escaped(entry.text, "\"\\") << "\"}\n";
}

void AddToTable(const Row& row, const Settings& settings, Table* table) {
  constexpr unsigned char kMonday = 1;
  constexpr unsigned char kFriday = 5;
  constexpr const char* kDim = "\033[2m";
  constexpr const char* kCyan = "\033[36m";
  const Entry& entry = *row.entry;
  const bool weekend = OZDate::IsWeekend(&row.moment, eCalWeekStartSunday, kMonday, kFriday) != 0;
  const bool has_priority = entry.priority != OZParser::kNoPriority;
  const char* const recurs = entry.rule ? "~" : "";
  const char* const color = weekend ? kCyan : "";
  table->Add({DisplayDate(row.moment) + (weekend ? "*" : ""), Times(entry, settings),
              has_priority ? std::to_string(entry.priority) : "", std::to_string(row.id),
              entry.done ? "x" : recurs, entry.text},
             entry.done ? kDim : color);
}

// What to list: dates in a range, or every entry once, on its first date.
struct Selection {
  bool all = false;
  un_date_time from{};
  un_date_time to{};
  std::string text;  // that the entries have
};

Selection ReadSelection(const Options& options, const Settings& settings) {
  constexpr int kFourWeeks = 27;  // days after the first one
  const auto* const first = options.Find("--from");
  const auto* const last = options.Find("--to");
  const auto* const text = options.Find("--find");
  const bool range = first != nullptr || last != nullptr;
  if (options.Has("--all") && range) throw UsageError("--all takes no --from and no --to");
  const un_date_time today = OZDate::CurDateTime();
  Selection selection = {.all = options.Has("--all") || (text != nullptr && !range),
                         .from = first != nullptr ? ReadDate(*first, today, settings) : today,
                         .text = text != nullptr ? *text : ""};
  selection.to = selection.from;
  OZDate::DateFwrd(&selection.to, kFourWeeks, 'D');
  if (last != nullptr) selection.to = ReadDate(*last, selection.from, settings);
  if (OZDate::DateCompare(&selection.to, &selection.from) < 0) {
    throw Rejection("the last day, " + FullDate(selection.to) + ", is before the first one, " +
                    FullDate(selection.from));
  }
  return selection;
}

std::vector<Row> FindRows(const Store::Contents& contents, const Selection& selection) {
  std::vector<Row> rows;
  for (const auto& [id, entry] : contents.entries) {
    if (!Contains(entry.text, selection.text)) continue;
    auto dates = selection.all ? DatesOf(entry, OZDate::BegOfTime, OZDate::EndOfTime, 1)
                               : DatesOf(entry, selection.from, selection.to);
    if (selection.all && dates.empty()) dates = {entry.moment};  // or nobody could remove it
    for (const un_date_time& date : dates) rows.push_back({date, id, &entry});
  }
  std::sort(rows.begin(), rows.end(),
            [](const Row& a, const Row& b) { return a.Order() < b.Order(); });
  return rows;
}

void PrintTable(const std::vector<Row>& rows, const Selection& selection,
                const Settings& settings) {
  if (selection.all) {
    std::cout << "Every date: " << Counted(rows.size(), "entry", "entries") << '\n';
  } else {
    std::cout << Heading(selection.from, selection.to) << ": "
              << Counted(rows.size(), "date", "dates") << '\n';
  }
  Table table({{"Date", 4},
               {"Time", 3},
               {"Pri", 1, Column::kRight},
               {"ID", 2, Column::kRight},
               {"", 5},
               {"Entry", 6}});
  for (const Row& row : rows) AddToTable(row, settings, &table);
  if (!rows.empty()) table.Print();
}

}  // namespace

std::string ExplainList() {
  return "Without --from and --to, it lists the four weeks from today. --all and --find list each\n"
         "entry once, on its first date; --find also takes --from and --to. Marks in the table:\n"
         "* a weekend, +1 ends on the next day, x done, ~ recurs.\n";
}

ExitStatus RunList(const Options& options) {
  const Settings settings(options);
  const Selection selection = ReadSelection(options, settings);
  const Store::Contents contents = Store(options, Store::kReading).ReadAll();
  const std::vector<Row> rows = FindRows(contents, selection);
  if (options.Has("--json")) {
    for (const Row& row : rows) PrintJson(row);
  } else {
    PrintTable(rows, selection, settings);
  }
  return ReportDamage(options.Words().front(), contents);
}
