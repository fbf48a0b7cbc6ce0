// Checks the tables of docs/guide/parser.md: what each operation makes of a text. There it is
// Wednesday 18 November 2026, 9:30.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <map>
#include <string>

#include "orzcore/parser.h"
#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/PageTables.h"

namespace {

using P = OZParser;
using Tokens = char[P::kTokens][P::kTokenSize];

constexpr stCurrencyFormat kDollars = {"$", '.'};
constexpr un_date_time kFieldsDate = un_date_time::Of(2026, 1, 31, 600);
constexpr un_date_time kNoDate = un_date_time::Of(0, 0, 0, 600);
constexpr auto kOldResult = static_cast<P::eParseResult>(77);

// The functions below return a column of a table: for a text, the content of the cell.
using Column = std::function<std::string(const std::string& text)>;

Column Number(int (*parse)(const char* text, std::int32_t* value)) {
  return [parse](const std::string& text) -> std::string {
    constexpr std::int32_t kOld = -4711;
    std::int32_t value = kOld;
    const int status = parse(text.c_str(), &value);
    if (value == kOld) return status == 0 ? "unchanged" : "rejected";
    return status == 0 ? std::to_string(value) : "changed";
  };
}

template <bool kNoneAllowed, bool kHundredths>
int Dollars(const char* text, std::int32_t* value) {
  return P::ParseCurrency(text, kNoneAllowed, value, &kDollars, kHundredths);
}

Column Interval(int (*parse)(const char* text, ST_TIME_RETURN_VAL* interval)) {
  return [parse](const std::string& text) -> std::string {
    ST_TIME_RETURN_VAL interval = {'x', 9, 7};
    if (parse(text.c_str(), &interval) != 0) return interval.value == 7 ? "rejected" : "changed";
    return std::string("`{'") + interval.unit + "', " + std::to_string(interval.sign) + ", " +
           std::to_string(interval.value) + "}`";
  };
}

std::string NameOf(int status, P::eParseResult result) {
  if (status != 0) return status == -1 && result == kOldResult ? "rejected" : "not just rejected";
  const std::map<P::eParseResult, std::string> kNames = {{P::eParseNone, "`eParseNone`"},
                                                         {P::eParseDate, "`eParseDate`"},
                                                         {P::eParseTime, "`eParseTime`"},
                                                         {P::eParseInterval, "`eParseInterval`"}};
  return kNames.at(result);
}

Column Date(un_date_time field, eCalWeekStart week_start = eCalWeekStartSunday,
            int day_position = 1, int none_clears = 1, bool names_result = false) {
  return [=](const std::string& text) {
    un_date_time date = field;
    P::eParseResult result = kOldResult;
    const int status =
        P::ParseDate(&result, none_clears, &date, text.c_str(), week_start, day_position);
    const std::string name = NameOf(status, result);
    EXPECT_EQ(date.time, field.time + 0U) << text;
    if (names_result || status != 0) return status == 0 || date == field ? name : "changed";
    return TextOf(date);
  };
}

Column Time(short field, short reference = OZDate::kNoTime, int subtract = 0,
            bool names_result = false) {
  return [=](const std::string& text) -> std::string {
    short time = field;
    P::eParseResult result = kOldResult;
    const int status = P::ParseTime(&result, subtract, &time, reference, text.c_str(), 0);
    const std::string name = NameOf(status, result);
    if (names_result || status != 0) return status == 0 || time == field ? name : "changed";
    if (time == OZDate::kNoTime) return "none";
    const int minutes = time % 60;
    return std::to_string(time / 60) + (minutes < 10 ? ":0" : ":") + std::to_string(minutes);
  };
}

std::string RunsOf(const std::string& text) {
  Tokens tokens;
  std::memset(tokens, 'x', sizeof(tokens));
  const short last = P::seperateText(text.c_str(), tokens);
  std::string runs;
  for (int i = 0; i < P::kTokens; ++i) {
    const std::string run = *tokens[i] == '\0' ? "nothing" : std::string("`") + tokens[i] + "`";
    if (i <= last) runs += (i > 0 ? ", " : "") + run;
    if (i > last) {
      EXPECT_EQ(run, "nothing") << text;
    }
  }
  return runs;
}

// Any mode but 2 is the mode of times.
template <short kMode>
std::string SeparatorsFit(const std::string& text) {
  Tokens tokens;
  return P::divchk(kMode, P::seperateText(text.c_str(), tokens)) == 0 ? "yes" : "no";
}

template <eCalWeekStart kWeekStart>
std::string WeekdayOf(const std::string& text) {
  Tokens tokens = {};
  text.copy(tokens[3], P::kTokenSize - 1);
  return std::to_string(P::fndwkdy(3, tokens, kWeekStart));
}

const std::map<std::string, Column> kColumns = {
    {"`ParseInt`", Number(P::ParseInt)},
    {"`ParseIntPlusLast`",
     Number([](auto text, auto value) { return P::ParseIntPlusLast(text, 31, value); })},
    {"`ParseReal`", Number([](auto text, auto value) { return P::ParseReal(text, 1, value); })},
    {"with `flags` 0", Number([](auto text, auto value) { return P::ParseReal(text, 0, value); })},
    {"`ParseCurrency`", Number(Dollars<false, false>)},
    {"with `none_allowed`", Number(Dollars<true, false>)},
    {"with `hundredths`", Number(Dollars<false, true>)},
    {"`ParseRealTI`",
     Interval([](auto text, auto interval) { return P::ParseRealTI(interval, text); })},
    {"`ParseIntTI`", Interval(P::ParseIntTI)},
    {"`ParseHoursMinTI`", Interval(P::ParseHoursMinTI)},
    {"Result of `ParseDate`", Date(kFieldsDate, eCalWeekStartSunday, 1, 1, true)},
    {"31 Jan 2026", Date(kFieldsDate)},
    {"No date", Date(kNoDate)},
    {"Monday opens the week", Date(kFieldsDate, eCalWeekStartMonday)},
    {"Day first", Date(kFieldsDate, eCalWeekStartSunday, 0)},
    {"`none_clears` 0", Date(kFieldsDate, eCalWeekStartSunday, 1, 0)},
    {"Result of `ParseTime`", Time(600, OZDate::kNoTime, 0, true)},
    {"10:00", Time(600)},
    {"0:30", Time(30)},
    {"No time", Time(OZDate::kNoTime)},
    {"From 9:00", Time(600, 540)},
    {"Back from 9:00", Time(600, 540, 1)},
    {"Back from now", Time(OZDate::kNoTime, OZDate::kNoTime, 1)},
    {"`seperateText`", RunsOf},
    {"`divchk` 1", SeparatorsFit<1>},
    {"`divchk` 9", SeparatorsFit<9>},
    {"`divchk` 2", SeparatorsFit<2>},
    {"`fndmth`", [](const std::string& text) { return std::to_string(P::fndmth(text.c_str())); }},
    {"`fndwkdy`", WeekdayOf<eCalWeekStartSunday>},
    {"with Monday", WeekdayOf<eCalWeekStartMonday>},
};

TEST(ParserOperations, DoWhatTheGuideTells) {
  FakeHost host;
  host.SetNow(2026, 11, 18, 9, 30);
  for (const PageTable& table : TablesOf("guide/parser.md")) {
    for (std::size_t i = 1; i < table.header.size(); ++i) {
      if (table.header[i] != "Meaning") CheckTexts(table, i, kColumns.at(table.header[i]));
    }
  }
}

TEST(ParserOperations, ReadBackWhatTheCalendarWrites) {
  FakeHost host;
  host.SetNow(2026, 11, 18, 9, 30);
  P::eParseResult result = kOldResult;
  char text[17];
  for (auto day = kFirstDay; day <= kLastDay; day += std::chrono::days(7)) {
    const un_date_time date = DateOf(day, 600);
    host.short_date = date.day % 2 == 0 ? "M/d/yy" : "d/M/yy";
    for (const int form : {2, 3}) {
      OZDate::FormatDate(&date, text, sizeof(text), form);
      un_date_time read = kFieldsDate;
      ASSERT_EQ(P::ParseDate(&result, 0, &read, text, eCalWeekStartSunday, 1), 0) << text;
      ASSERT_EQ(read, date) << text;
    }
  }
  for (int minutes = 0; minutes < 2 * OZDate::kEndOfDay; ++minutes) {
    host.clock_24hour = minutes % 2;
    OZDate::FormatTime(minutes / 2, text, 0, 0);
    short time = 0;
    ASSERT_EQ(P::ParseTime(&result, 0, &time, OZDate::kNoTime, text, minutes % 2), 0) << text;
    ASSERT_EQ(time, minutes / 2) << text;
  }
}

}  // namespace
