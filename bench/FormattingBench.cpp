// The texts of dates and times, compared with strftime.
#include <array>
#include <string_view>

#include "BenchDates.h"

namespace bench {
namespace {

// A text by value, so that making it costs nothing but writing it.
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

std::tm ToTm(un_date_time date) {
  std::int32_t day_number = 0;
  const int weekday = OZDate::DayOfWeek(&date, &day_number, eCalWeekStartSunday, 1);
  std::tm fields = {};
  fields.tm_year = static_cast<int>(date.year) - 1900;
  fields.tm_mon = static_cast<int>(date.month) - 1;
  fields.tm_mday = static_cast<int>(date.day);
  fields.tm_wday = weekday - 1;
  return fields;
}

auto Strftime(const char* format) {
  return [format](const std::tm& fields) {
    Text text;
    std::strftime(text.bytes.data(), text.bytes.size(), format, &fields);
    return text;
  };
}

// The formats leave out the zeros that ours do not write.
void AddForm(int form, const std::string& name, const char* format) {
  Random random;
  const auto dates = Inputs([&] { return random.Date(1753, 2099); });
  const auto ours = [form](un_date_time date) {
    Text text;
    OZDate::FormatDate(&date, text.bytes.data(), static_cast<int>(text.bytes.size()), form);
    return text;
  };
  const auto texts = Converted(dates, ours);
  Add("FormatDate/" + name + "/ours", dates, ours, texts);
  Add("FormatDate/" + name + "/strftime", Converted(dates, ToTm), Strftime(format), texts);
}

}  // namespace

void AddFormatting() {
  AddForm(1, "weekday", "%a-%b %-d");
  AddForm(2, "year", "%b %-d,%Y");
  AddForm(3, "weekday_year", "%a-%b %-d,%Y");

  Random random;
  const auto times = Inputs([&] { return static_cast<short>(random.Between(0, 1439)); });
  const auto texts = Converted(times, OurTime);
  const auto to_tm = [](short minutes) {
    std::tm fields = {};
    fields.tm_hour = minutes / 60;
    fields.tm_min = minutes % 60;
    return fields;
  };
  Add("FormatTime/ours", times, OurTime, texts);
  Add("FormatTime/strftime", Converted(times, to_tm), Strftime("%l:%M%P"), texts);
}

}  // namespace bench
