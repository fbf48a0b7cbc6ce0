#include <algorithm>
#include <iostream>
#include <tuple>

#include "Commands.h"
#include "Store.h"
#include "fields/FieldKinds.h"
#include "terminal/Print.h"
#include "terminal/Terminal.h"

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

std::string Times(const Entry& entry, bool hours24) {
  const int start = static_cast<int>(entry.moment.time);
  const bool no_time = start == OZDate::kNoTime;
  if (no_time && entry.minutes != 0) return Duration(std::int64_t{entry.minutes} * 10);
  if (no_time) return "";
  if (entry.minutes == 0) return DisplayTime(start, hours24);
  const stEventLen length = {0, static_cast<std::uint16_t>(entry.minutes & 0x7FFF)};
  const short end = OZDate::GetEndTime(static_cast<short>(start), length);
  return DisplayTime(start, hours24) + '-' + DisplayTime(end, hours24) +
         (start + entry.minutes > OZDate::kEndOfDay ? " +1" : "");
}

// Replaces control characters, since another user may have written the text and they could change
// the terminal. In UTF-8, the control characters from U+0080 to U+009F have two bytes.
std::string Shown(std::string text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < ' ' || byte == 0x7F) text[at] = '?';
    if (at > 0 && text[at - 1] == '\xC2' && (byte & 0xE0) == 0x80) text.replace(--at, 2, 1, '?');
  }
  if (entry.minutes != 0) std::cout << R"(,"minutes":)" << entry.minutes;
  if (entry.priority != OZParser::kNoPriority) std::cout << R"(,"priority":)" << entry.priority;
  std::cout << R"(,"done":)" << (entry.done ? "true" : "false") << R"(,"recurs":)"
            << (entry.rule ? "true" : "false") << R"(,"text":)" << '"'
            << Escaped(entry.text, "\"\\") << "\"}\n";
}

void PrintRow(const Row& row, bool hours24) {
  constexpr unsigned char kMonday = 1;
  constexpr unsigned char kFriday = 5;
  constexpr const char* kDim = "\033[2m";
  constexpr const char* kCyan = "\033[36m";
  const Entry& entry = *row.entry;
  const bool weekend = OZDate::IsWeekend(&row.moment, eCalWeekStartSunday, kMonday, kFriday) != 0;
  const bool has_priority = entry.priority != OZParser::kNoPriority;
  const char recurs = entry.rule ? '~' : ' ';
  const char* const color = entry.done ? kDim : kCyan;
  const bool colored = HasColors() && (entry.done || weekend);

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
               {"  Entry", 5}});
  for (const Row& row : rows) AddToTable(row, settings, &table);
  if (!rows.empty()) table.Print();
}

}  // namespace

std::string ExplainList() {
  return "Without --from and --to, it lists the four weeks from today. Marks in the table:\n"
         "* a weekend, +1 ends on the next day, x done, ~ recurs.\n";
}

ExitStatus RunList(const Options& options) {
  constexpr int kFourWeeks = 27;  // days after the first one
  const un_date_time today = OZDate::CurDateTime();
  const auto* const first = options.Find("--from");
  const auto* const last = options.Find("--to");
  const un_date_time from = first != nullptr ? ReadDate(*first, today, options) : today;
  un_date_time to = from;
  OZDate::DateFwrd(&to, kFourWeeks, 'D');
  if (last != nullptr) to = ReadDate(*last, from, options);

  const Store::Contents contents = Store(options.Words().front(), Store::kReading).ReadAll();
  std::vector<Row> rows;
  for (const auto& [id, entry] : contents.entries) AddRows(id, entry, from, to, &rows);
  std::sort(rows.begin(), rows.end(),
            [](const Row& a, const Row& b) { return a.Order() < b.Order(); });

  std::cout << DisplayDate(from) << " to " << DisplayDate(to) << ": " << rows.size()
            << (rows.size() == 1 ? " date\n" : " dates\n");
  if (!rows.empty()) std::cout << "Date         Time               Pri    ID   Entry\n";
  for (const Row& row : rows) PrintRow(row, options.Has("--24-hour"));
  if (contents.damaged.empty()) return kSuccess;

  std::string subject = "Reading entry " + std::to_string(contents.damaged.front());
  if (contents.damaged.size() > 1) {
    subject += " and " + std::to_string(contents.damaged.size() - 1) + " more";
  }
  throw Failure{eErrCorrupted1, subject, __FILE__, __LINE__};
}
