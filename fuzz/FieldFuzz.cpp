// Parses every input as every kind of field, with flags from the input. The parse must give a value
// in its range, or reject the text and write nothing.
#include <chrono>
#include <cstring>
#include <string>

#include "Require.h"
#include "support/Dates.h"
#include "support/FakeHost.h"
#include "support/Fields.h"

namespace {

using P = OZParser;

constexpr std::size_t kOptionBytes = 8;
constexpr int kEditTypes = 11;

bool IsRealDate(un_date_time date) {
  const std::chrono::year_month_day ymd(std::chrono::year(int(date.year)),
                                        std::chrono::month(date.month), std::chrono::day(date.day));
  return ymd.ok() && ymd >= kFirstDay && ymd <= kLastDay;
}

void CheckValue(P::eEditType type, const Parsed& parsed, bool real_reference) {
  const P::eParseResult result = parsed.result;
  const auto interval = parsed.As<ST_TIME_RETURN_VAL>();
  const auto time = parsed.As<short>();
  if (result == P::eParseDate || (result == P::eParseInterval && type == P::eEditDate)) {
    const bool may_be_unreal = result == P::eParseInterval && !real_reference;
    Require(may_be_unreal || IsRealDate(parsed.As<un_date_time>()));
  } else if (result == P::eParseReal || result == P::eParseInt) {
    Require(parsed.As<std::int32_t>() >= 0);
  } else if (result == P::eParseTime) {
    Require(time >= 0 && time <= OZDate::kEndOfDay);
  } else if (result == P::eParseInterval) {
    Require(std::strchr("MHDWY ", interval.unit) != nullptr);
    Require(interval.sign == 1 ? interval.value <= 0 : interval.value >= 0);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static FakeHost host;  // so that the same input always has the same result
  if (size < kOptionBytes) return 0;
  host.SetNow(1753 + (data[4] + data[5]) % 347, data[3] % 12 + 1, data[2] % 28 + 1, data[1] % 24);
  const std::string text(reinterpret_cast<const char*>(data + kOptionBytes), size - kOptionBytes);
  const stCurrencyFormat format = {{static_cast<char>(data[6]), 0, 0, 0, 0},
                                   static_cast<char>(data[7])};
  const un_date_time reference =
      un_date_time::Of(1753 + data[0], data[1] % 12 + 1, data[2] % 31 + 1, data[3] * 7);
  const int flags = data[5];
  const FieldOptions options = {.flags = static_cast<unsigned short>(flags & 3),
                                .last_value = 31,
                                .format = (flags & 4) != 0 ? &format : nullptr,
                                .week_start = static_cast<eCalWeekStart>(flags >> 3 & 1),
                                .twenty_four_hour = flags >> 4 & 1,
                                .day_position = flags >> 5 & 1};
  for (int number = -1; number < kEditTypes; ++number) {
    const auto type = static_cast<P::eEditType>(number);
    const Parsed parsed = Parse(text, type, options, type == P::eEditDate ? &reference : nullptr);
    if (parsed.status == 0) {
      CheckValue(type, parsed, IsRealDate(reference));
    } else {
      Require(parsed.status == -1 && parsed.result == kOldResult && parsed.Untouched());
    }
  }
  short priority = -1;
  const int status = P::ParsePriority(&priority, text.c_str(), data[0] & 1);
  Require(status == 0 ? (priority >= 0 && priority <= 100) || priority == P::kNoPriority
                      : status == -1 && priority == -1);
  return 0;
}
