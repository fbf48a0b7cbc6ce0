#include <algorithm>
#include <iomanip>
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

void AddRows(int id, const Entry& entry, const un_date_time& from, const un_date_time& to,
             std::vector<Row>* rows) {
  un_date_time date = entry.moment;
  // Without a rule, the entry has only its first date.
  const auto on_date = [&](bool include) {
    if (entry.rule) return entry.rule->Advance(eCyclicalsBumpedForward, include, &date);
    return include;
  };
  for (bool more = on_date(true); more && OZDate::DateCompare(&date, &to) <= 0;
       more = on_date(false)) {
    if (OZDate::DateCompare(&date, &from) >= 0) rows->push_back({date, id, &entry});
  }
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
  return text;
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

  std::cout << (colored ? color : "") << std::left << std::setw(13)
            << DisplayDate(row.moment) + (weekend ? "*" : "") << std::setw(19)
            << Times(entry, hours24) << std::right << std::setw(3)
            << (has_priority ? std::to_string(entry.priority) : "") << std::setw(6) << row.id << ' '
            << (entry.done ? 'x' : recurs) << ' ' << Shown(entry.text) << (colored ? "\033[0m" : "")
            << '\n';
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
