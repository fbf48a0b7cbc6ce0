// Checks every row in the tables of docs/field-forms.md.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <regex>
#include <string>
#include <vector>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"
#include "support/PageTables.h"

namespace {

using P = OZParser;

constexpr stCurrencyFormat kDollars = {"$", '.'};
constexpr stCurrencyFormat kMarks = {"DM", ','};
constexpr unsigned kNowTime = 9 * 60 + 30;
constexpr un_date_time kFieldsDate = un_date_time::Of(2026, 1, 31, 600);

struct Kind {
  P::eEditType type;
  const stCurrencyFormat* format = nullptr;
  bool is_priority = false;
};

// The kinds of field by the first cell of a table's header. A table under `Field` is not tested.
const std::map<std::string, Kind> kKinds = {
    {"Date field", {P::eEditDate}},
    {"Time field", {P::eEditTime}},
    {"Combined field", {P::eEditDateTimeTI}},
    {"Interval field", {P::eEditRealTI}},
    {"Count of days", {P::eEditIntTI}},
    {"Count of hours", {P::eEditHoursMinTI}},
    {"Whole number field", {P::eEditInt}},
    {"Real number field", {P::eEditReal}},
    {"Money field, $ and point", {P::eEditReal, &kDollars}},
    {"Money field, DM and comma", {P::eEditReal, &kMarks}},
    {"Priority field", {.type = P::eEditInt, .is_priority = true}},
};

struct Setting {
  FieldOptions options = {.flags = P::kNoneAllowed};
  int zero_digit = 0;
  un_date_time today = un_date_time::Of(2026, 11, 18);
};

// The settings by the other cells of a header. A column under `Meaning` is not tested.
const std::map<std::string, Setting> kSettings = {
    {"Result", {}},
    {"Must have a value", {.options = {}}},
    {"Last allowed", {.options = {.flags = P::kNoneAllowed | P::kLastAllowed, .last_value = 31}}},
    {"Monday opens the week",
     {.options = {.flags = P::kNoneAllowed, .week_start = eCalWeekStartMonday}}},
    {"Day first", {.options = {.flags = P::kNoneAllowed, .day_position = 0}}},
    {"24-hour field", {.options = {.flags = P::kNoneAllowed, .twenty_four_hour = 1}}},
    {"Zero digit allowed", {.zero_digit = 1}},
    {"On 5 Jan 2026", {.today = un_date_time::Of(2026, 1, 5)}},
    {"On 5 Jan 2028", {.today = un_date_time::Of(2028, 1, 5)}},
    {"On 31 Dec 2099", {.today = un_date_time::Of(2099, 12, 31)}},
};

template <typename... Values>
std::string Format(const char* format, Values... values) {
  char text[64];
  std::snprintf(text, sizeof(text), format, values...);
  return text;
}

std::string DateText(un_date_time date) {
  constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr const char* kMonths[] = {"?",   "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul",
                                     "Aug", "Sep", "Oct", "Nov", "Dec", "?",   "?",   "?"};
  const std::chrono::sys_days day =
      std::chrono::year(int(date.year)) / int(date.month) / int(date.day);
  return Format("%s %u %s %u", kDays[std::chrono::weekday(day).c_encoding()], unsigned{date.day},
                kMonths[date.month], unsigned{date.year});
}

std::string IntervalText(ST_TIME_RETURN_VAL interval, P::eEditType type) {
  if (type == P::eEditIntTI || type == P::eEditHoursMinTI) {
    return Format(interval.unit == ' ' ? "%d" : "%d %c", int{interval.value}, interval.unit);
  }
  const int scale = type == P::eEditRealTI ? 10 : 1;
  const bool is_consistent = interval.unit == 'M' && (interval.sign == 1) == (interval.value < 0);
  return Format(interval.sign == 2 ? "+%.12g %s" : "%.12g %s", double(interval.value) / scale,
                is_consistent ? "min" : "in disorder");
}

std::string PriorityText(const std::string& text, int zero_digit) {
  short priority = -1;
  const int status = P::ParsePriority(&priority, text.c_str(), zero_digit);
  if (status != 0) return priority == -1 ? "rejected" : "rejected, but written to";
  return priority == P::kNoPriority ? "none" : Format("%d", priority);
}

// Returns the result of a text in a field, in the words of the page.
std::string ResultOf(const std::string& text, const Kind& kind, const Setting& setting) {
  if (kind.is_priority) return PriorityText(text, setting.zero_digit);
  const bool is_date = kind.type == P::eEditDate;
  FieldOptions options = setting.options;
  options.format = kind.format;
  const Parsed parsed = Parse(text, kind.type, options, is_date ? &kFieldsDate : nullptr);
  const auto date = parsed.As<un_date_time>();
  if (parsed.status != 0 || parsed.result == P::eParseNone) {
    if (is_date ? date != kFieldsDate : !parsed.Untouched()) return "written to";
    if (parsed.status == 0) return "none";
    return parsed.status == -1 && parsed.result == kOldResult ? "rejected" : "not just rejected";
  }
  if (is_date || parsed.result == P::eParseDate) {
    const bool counts_from_field = parsed.result == P::eParseInterval;
    if (counts_from_field != text.starts_with('+') && counts_from_field != text.starts_with('-')) {
      return "of the wrong kind";
    }
    const unsigned time = counts_from_field ? kFieldsDate.time : kNowTime;
    return date.time == time ? DateText(date) : "at the wrong time";
  }
  if (parsed.result == P::eParseTime) {
    return Format("%d:%02d", parsed.As<short>() / 60, parsed.As<short>() % 60);
  }
  if (parsed.result == P::eParseInterval) {
    return IntervalText(parsed.As<ST_TIME_RETURN_VAL>(), kind.type);
  }
  const int scale = parsed.result == P::eParseReal ? 1000 : 1;
  return Format("%.12g", double(parsed.As<std::int32_t>()) / scale);
}

TEST(FieldForms, AreWhatTheParserAccepts) {
  FakeHost host;
  int checks = 0;
  for (const PageTable& table : TablesOf("field-forms.md")) {
    const auto kind = kKinds.find(table.header[0]);
    ASSERT_TRUE(kind != kKinds.end() || table.header[0] == "Field") << table.header[0];
    if (kind == kKinds.end()) continue;
    for (std::size_t i = 1; i < table.header.size(); ++i) {
      const auto column = kSettings.find(table.header[i]);
      ASSERT_TRUE(column != kSettings.end() || table.header[i] == "Meaning") << table.header[i];
      if (column == kSettings.end()) continue;
      const un_date_time today = column->second.today;
      host.SetNow(int(today.year), int(today.month), int(today.day), 9, 30);
      for (const PageRow& row : table.rows) {
        std::vector<std::string> texts = CodeIn(row.cells[0]);
        if (texts.empty()) texts.emplace_back();  // the row of the empty text
        for (const std::string& text : texts) {
          const std::string typed = std::regex_replace(text, std::regex("<tab>"), "\t");
          EXPECT_EQ(ResultOf(typed, kind->second, column->second), row.cells[i])
              << row.place << ", " << table.header[i] << ": " << text;
          ++checks;
        }
      }
    }
  }
  EXPECT_GT(checks, 800);  // fewer: the tables were not found
}

}  // namespace
