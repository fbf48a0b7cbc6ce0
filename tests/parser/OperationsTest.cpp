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
#include "support/Fields.h"
#include "support/PageTables.h"

namespace {

using P = OZParser;
using Tokens = char[P::kTokens][P::kTokenSize];

constexpr stCurrencyFormat kDollars = {"$", '.'};
constexpr un_date_time kFieldsDate = un_date_time::Of(2026, 1, 31, 600);
constexpr un_date_time kNoDate = un_date_time::Of(0, 0, 0, 600);

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

Column Date(un_date_time field, eCalWeekStart week_start = eCalWeekStartSunday,
            int day_position = 1, int none_clears = 1) {
  return [=](const std::string& text) -> std::string {
    un_date_time date = field;
    P::eParseResult result = kOldResult;
    const int status =
        P::ParseDate(&result, none_clears, &date, text.c_str(), week_start, day_position);
    const FieldOptions options = {
        .flags = P::kNoneAllowed, .week_start = week_start, .day_position = day_position};
    EXPECT_EQ(result, Parse(text, P::eEditDate, options, &field).result) << text;
    EXPECT_EQ(date.time + 0U, field.time + 0U) << text;
    if (status == 0) return TextOf(date);
    return status == -1 && date == field ? "rejected" : "changed";
  };
}

Column Time(short field, short reference = OZDate::kNoTime, int subtract = 0) {
  return [=](const std::string& text) -> std::string {
    short time = field;
    P::eParseResult result = kOldResult;
    const int status = P::ParseTime(&result, subtract, &time, reference, text.c_str(), 0);
    EXPECT_EQ(result, Parse(text, P::eEditTime, {.flags = P::kNoneAllowed}).result) << text;
    if (status != 0) return status == -1 && time == field ? "rejected" : "changed";
    if (time == OZDate::kNoTime) return "none";
    return std::to_string(time / 60) + (time % 60 < 10 ? ":0" : ":") + std::to_string(time % 60);
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
    {"31 Jan 2026", Date(kFieldsDate)},
    {"No date", Date(kNoDate)},
    {"Monday opens the week", Date(kFieldsDate, eCalWeekStartMonday)},
    {"Day first", Date(kFieldsDate, eCalWeekStartSunday, 0)},
    {"`none_clears` 0", Date(kFieldsDate, eCalWeekStartSunday, 1, 0)},
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

}  // namespace
