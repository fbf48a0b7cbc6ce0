// The texts of dates and times, compared with strftime.
#include <array>
#include <string_view>

#include "Bench.h"

namespace orzcore::bench {
namespace {

// A text by value, so that nothing but writing it is measured.
struct Text {
  std::array<char, 24> bytes;

  bool operator==(const Text& other) const {
    return std::string_view(bytes.data()) == other.bytes.data();
  }
};

Text OurTime(short minutes) {
  Text text;
  OZDate::FormatTime(minutes, text.bytes.data(), 0, 0);
  return text;
}

auto FormatDate(int form) {
  return [form](un_date_time date) {
    Text text;
    OZDate::FormatDate(&date, text.bytes.data(), static_cast<int>(text.bytes.size()), form);
    return text;
  };
}

std::tm ToTm(un_date_time date) {
  const std::chrono::year_month_day day = ToChrono(date);
  const std::chrono::weekday weekday = std::chrono::sys_days(day);
  std::tm fields = {};
  fields.tm_year = static_cast<int>(date.year) - 1900;
  fields.tm_mon = static_cast<int>(date.month) - 1;
  fields.tm_mday = static_cast<int>(date.day);
  fields.tm_wday = static_cast<int>(weekday.c_encoding());
  return fields;
}

auto Strftime(const char* format) {
  return [format](const std::tm& fields) {
    Text text;
    std::strftime(text.bytes.data(), text.bytes.size(), format, &fields);
    return text;
  };
}

// The formats leave out the zeros that ours does not write. One peer gets its fields ready, with
// the weekday; the other begins with the date, as ours does.
void AddForm(int form, const std::string& row, const char* format) {
  Random random;
  const auto dates = Inputs([&] { return random.Date(1753, 2099); });
  const auto ours = FormatDate(form);
  const auto texts = Converted(dates, ours);
  Add(row, "ours", dates, ours, texts);
  Add(row, "strftime", Converted(dates, ToTm), Strftime(format), texts);
  const auto from_date = [write = Strftime(format)](un_date_time date) {
    return write(ToTm(date));
  };
  Add(row, "strftime from the date", dates, from_date, texts);
}

// The settings of the user come from the environment.
template <typename Write, typename Date>
void AddEnvironments(const std::string& who, Write write, const Date& date) {
  const auto measure = [=](benchmark::State& state) {
    SetEnvironment(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(write(date));
    SetEnvironment(kVariables);
  };
  Register("write a date, n variables in the environment", who, measure)
      ->ArgsProduct({{10, 100, 1000}});
}

}  // namespace

void AddFormatting() {
  AddForm(1, "write Fri-Mar 15", "%a-%b %-d");
  AddForm(2, "write Mar 15,2024", "%b %-d,%Y");
  AddForm(3, "write Fri-Mar 15,2024", "%a-%b %-d,%Y");
  constexpr un_date_time kDate = un_date_time::Of(2024, 3, 15);
  AddEnvironments("ours", FormatDate(3), kDate);
  AddEnvironments("strftime", Strftime("%a-%b %-d,%Y"), ToTm(kDate));

  Random random;
  const auto times = Inputs([&] { return static_cast<short>(random.Between(0, 1439)); });
  const auto texts = Converted(times, OurTime);
  const auto to_tm = [](short minutes) {
    std::tm fields = {};
    fields.tm_hour = minutes / 60;
    fields.tm_min = minutes % 60;
    return fields;
  };
  Add("write 1:05pm", "ours", times, OurTime, texts);
  Add("write 1:05pm", "strftime", Converted(times, to_tm), Strftime("%l:%M%P"), texts);
}

}  // namespace orzcore::bench
