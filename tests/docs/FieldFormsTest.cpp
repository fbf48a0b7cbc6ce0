// Checks every row in the tables of docs/field-forms.md.
#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"
#include "support/PageTables.h"

namespace {

using P = OZParser;

constexpr stCurrencyFormat kDollars = {"$", '.'};
constexpr stCurrencyFormat kMarks = {"DM", ','};
constexpr stCurrencyFormat kEuros = {"EURO", '.'};
constexpr stCurrencyFormat kNoSymbol = {"", '.'};
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
    {"Money field, EURO and point", {P::eEditReal, &kEuros}},
    {"Money field, no symbol", {P::eEditReal, &kNoSymbol}},
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
  const std::chrono::sys_days day =
      std::chrono::year(int(date.year)) / int(date.month) / int(date.day);
  return std::string(kDays[std::chrono::weekday(day).c_encoding()]) + ' ' + TextOf(date);
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
  P::eParseResult no_result = kOldResult;
  EXPECT_EQ(P::ParseField(&no_result, options.flags, nullptr, options.last_value, text.c_str(),
                          kind.type, options.format, options.week_start, options.twenty_four_hour,
                          options.day_position),
            parsed.status)
      << text << " without a destination";
  EXPECT_EQ(no_result, kOldResult) << text << " without a destination";
  if (parsed.status != 0 || parsed.result == P::eParseNone) {
    if (!parsed.Untouched()) return "written to";
    if (parsed.status == 0) return "none";
    return parsed.status == -1 && parsed.result == kOldResult ? "rejected" : "not just rejected";
  }
  if (is_date || parsed.result == P::eParseDate) {
    const bool counts_from_field = parsed.result == P::eParseInterval;
    if (counts_from_field != text.starts_with('+') && counts_from_field != text.starts_with('-')) {
      return "of the wrong kind";
    }
    const unsigned time = counts_from_field ? kFieldsDate.time : kNowTime;
    const auto date = parsed.As<un_date_time>();
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
  std::set<std::string> tested;
  for (const PageTable& table : TablesOf("field-forms.md")) {
    const auto kind = kKinds.find(table.header[0]);
    ASSERT_TRUE(kind != kKinds.end() || table.header[0] == "Field" || table.header[0] == "Words")
        << table.header[0];
    if (kind == kKinds.end()) continue;
    tested.insert(kind->first);
    for (std::size_t i = 1; i < table.header.size(); ++i) {
      if (table.header[i] == "Meaning") continue;
      const Setting& setting = kSettings.at(table.header[i]);
      const un_date_time today = setting.today;
      host.SetNow(int(today.year), int(today.month), int(today.day), 9, 30);
      CheckTexts(table, i, [&](const std::string& text) {
        host.clock_reads = 0;
        const std::string result = ResultOf(text, kind->second, setting);
        EXPECT_EQ(host.clock_reads, kind->second.is_priority ? 0 : 2)
            << "for two parses of " << text;
        return result;
      });
    }
  }
  EXPECT_EQ(tested.size(), kKinds.size()) << "some tables were not found";
}

std::string UpperCase(std::string word) {
  for (char& c : word) c = static_cast<char>(std::toupper(c));
  return word;
}

// The parser's words are the literals of letters in its sources, and the letters of the weekdays.
TEST(FieldForms, ListEveryWordOfTheParser) {
  std::set<std::string> known;
  const std::regex word(R"re("([A-Za-z]{2,})"|\{'([A-Z])', '(?:\\0|([A-Z]))'\})re");
  for (const auto& file : std::filesystem::directory_iterator(PARSER_DIRECTORY)) {
    std::ifstream in(file.path());
    const std::string source(std::istreambuf_iterator<char>(in), {});
    for (std::sregex_iterator match(source.begin(), source.end(), word), end; match != end;
         ++match) {
      known.insert(UpperCase(match->format("$1$2$3")));
    }
  }
  std::set<std::string> listed;
  for (const PageTable& table : TablesOf("field-forms.md")) {
    const std::size_t column = table.header[0] == "Field" ? 1 : 0;
    if (table.header[0] != "Field" && table.header[0] != "Words") continue;
    for (const PageRow& row : table.rows) {
      for (const std::string& text : CodeIn(row.cells[column])) listed.insert(UpperCase(text));
    }
  }
  EXPECT_EQ(listed, known);
}

}  // namespace
