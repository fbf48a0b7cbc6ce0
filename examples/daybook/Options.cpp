#include "Options.h"

#include <cctype>
#include <iomanip>
#include <ostream>
#include <utility>

#include "Text.h"
#include "orzcore/foundation.h"

namespace {

constexpr int kMostDates = 1000000;

void Require(bool fits, const char* option, const std::string& value, const char* possible) {
  if (fits) return;
  throw UsageError(std::string(option) + " is '" + value + "': it must be " + possible);
}

template <bool Options::*flag, bool setting = true>
void Set(Options& options, const std::string& /*value*/) {
  options.*flag = setting;
}

void SetWeekStart(Options& options, const std::string& value) {
  Require(value == "sunday" || value == "monday", "--week-start", value, "sunday or monday");
  options.week_start = value == "monday" ? eCalWeekStartMonday : eCalWeekStartSunday;
}

void SetDate(Options& options, const std::string& value) {
  const auto date = ReadDate(value, options);
  Require(date.has_value(), "--date", value, "a date");
  options.date = *date;
}

void SetTime(Options& options, const std::string& value) {
  OZParser::eParseResult result = OZParser::eParseNone;
  const int status = OZParser::ParseTime(&result, 0, &options.time, OZDate::kNoTime, value.c_str(),
                                         options.twenty_four_hour ? 1 : 0);
  Require(status == 0 && result != OZParser::eParseNone, "--time", value, "a time");
}

void SetSymbol(Options& options, const std::string& value) {
  Require(value.size() < sizeof options.money.symbol, "--symbol", value, "at most 4 bytes long");
  String_copy(options.money.symbol, value.c_str(), static_cast<short>(value.size()), 1);
}

void SetDecimal(Options& options, const std::string& value) {
  const bool fits = value.size() == 1 && std::isdigit(static_cast<unsigned char>(value[0])) == 0;
  Require(fits, "--decimal", value, "one character that is no digit");
  options.money.decimalChar = value[0];
}

void SetCount(Options& options, const std::string& value) {
  const auto count = WholeNumber(value, 1, kMostDates);
  Require(count.has_value(), "--count", value, "a whole number from 1 to 1000000");
  options.count = *count;
}

struct Option {
  std::string name;
  std::string value;  // what the value is called, or empty if the option takes none
  OptionGroup group;
  std::string help;
  void (*apply)(Options& options, const std::string& value);
};

const Option kOptions[] = {
    {"--help", "", kEveryCommand, "show this help", Set<&Options::help>},
    {"--week-start", "DAY", kDateOptions, "sunday (the default) or monday", SetWeekStart},
    {"--day-first", "", kDateOptions, "3/5 is 3 May", Set<&Options::day_first>},
    {"--month-first", "", kDateOptions, "3/5 is 5 March (default)",
     Set<&Options::day_first, false>},
    {"--24-hour", "", kFieldOptions, "a bare 3 is 03:00", Set<&Options::twenty_four_hour>},
    {"--date", "D", kReferenceOptions, "what the date field holds: +3 d counts from it", SetDate},
    {"--time", "T", kReferenceOptions, "what the time field holds: 30 m counts from it", SetTime},
    {"--symbol", "S", kFieldOptions, "the currency symbol of money ($)", SetSymbol},
    {"--decimal", "C", kFieldOptions, "the decimal character of money (.)", SetDecimal},
    {"--count", "N", kSearchOptions, "how many dates are listed (5)", SetCount},
    {"--back", "", kSearchOptions, "search backward", Set<&Options::back>},
    {"--include", "", kSearchOptions, "DATE itself may be the first", Set<&Options::include>},
};

const Option& FindOption(const std::string& name, unsigned groups) {
  for (const Option& option : kOptions) {
    if (option.name == name && (option.group & groups) != 0) return option;
  }
  throw UsageError("unknown option '" + name + "'");
}

}  // namespace

Options ReadOptions(const std::vector<std::string>& arguments, unsigned groups) {
  Options options;
  std::vector<std::pair<const Option*, std::string>> references;

  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (*argument == "--") {
      options.words.insert(options.words.end(), argument + 1, arguments.end());
      break;
    }
    if (!argument->starts_with("--")) {
      options.words.push_back(*argument);
      continue;
    }
    const Option& option = FindOption(*argument, groups | kEveryCommand);
    const bool takes_value = !option.value.empty();
    if (takes_value && ++argument == arguments.end()) {
      throw UsageError("option '" + option.name + "' needs a value");
    }
    if (option.group == kReferenceOptions) {
      references.emplace_back(&option, *argument);
    } else {
      option.apply(options, *argument);
    }
  }
  // How these are read depends on the other options, wherever they stand.
  for (const auto& [option, value] : references) option->apply(options, value);
  return options;
}

void PrintOptions(std::ostream& out, unsigned groups) {
  for (const Option& option : kOptions) {
    if ((option.group & (groups | kEveryCommand)) == 0) continue;
    out << "  " << std::left << std::setw(18) << option.name + ' ' + option.value << option.help
        << '\n';
  }
}

std::optional<un_date_time> ReadDate(const std::string& text, const Options& options) {
  OZParser::eParseResult result = OZParser::eParseNone;
  un_date_time date{};
  const int status = OZParser::ParseDate(&result, 1, &date, text.c_str(), options.week_start,
                                         options.day_first ? 0 : 1);
  if (status != 0 || result == OZParser::eParseNone) return std::nullopt;
  return date;
}
