// Parses every input as every kind of field, with flags from the input. The parse must give a value
// in its range, or reject the text and write nothing.
#include <cstdlib>
#include <cstring>
#include <string>

#include "orzcore/parser.h"
#include "orzcore/platform.h"

namespace {

using P = OZParser;

constexpr std::size_t kOptionBytes = 8;
constexpr int kEditTypes = 11;

// A clock with the time of the input, so that the same input always has the same result.
class InputClock : public OZHost {
 public:
  InputClock() { Install(this); }
  std::tm LocalTime() override { return now; }
  std::tm now = {};
};

void Require(bool holds) {
  if (!holds) std::abort();
}

bool IsRealDate(un_date_time date) {
  return date.year >= OZDate::BegOfTime.year && date.year <= OZDate::EndOfTime.year &&
         date.month >= 1 && date.month <= 12 && date.day >= 1 &&
         date.day <= OZDate::DaysInMonth(static_cast<unsigned short>(date.month - 1),
                                         static_cast<unsigned short>(date.year));
}

void CheckValue(P::eEditType type, P::eParseResult result, const unsigned char* bytes,
                bool real_reference) {
  un_date_time date = {};
  ST_TIME_RETURN_VAL interval = {};
  std::int32_t number = 0;
  short time = 0;
  std::memcpy(&date, bytes, sizeof(date));
  std::memcpy(&interval, bytes, sizeof(interval));
  std::memcpy(&number, bytes, sizeof(number));
  std::memcpy(&time, bytes, sizeof(time));
  switch (result) {
    case P::eParseDate:
      return Require(IsRealDate(date));
    case P::eParseReal:
    case P::eParseInt:
      return Require(number >= 0);
    case P::eParseTime:
      return Require(time >= 0 && time <= OZDate::kEndOfDay);
    case P::eParseInterval:
      if (type == P::eEditDate) return Require(!real_reference || IsRealDate(date));
      Require(std::strchr("MHDWY ", interval.unit) != nullptr);
      return Require(interval.sign == 1 ? interval.value <= 0 : interval.value >= 0);
    default:
      return;
  }
}

void ParseOnce(const std::string& text, P::eEditType type, const unsigned char* options) {
  constexpr auto kOldResult = static_cast<P::eParseResult>(77);
  const stCurrencyFormat format = {{static_cast<char>(options[6]), 0, 0, 0, 0},
                                   static_cast<char>(options[7])};
  const un_date_time reference =
      un_date_time::Of(1753 + options[0], options[1] % 12 + 1, options[2] % 31 + 1, options[3] * 7);
  const int flags = options[5];
  unsigned char bytes[8];
  std::memset(bytes, 0xEE, sizeof(bytes));
  if (type == P::eEditDate) std::memcpy(bytes, &reference, sizeof(reference));
  unsigned char before[8];
  std::memcpy(before, bytes, sizeof(before));

  P::eParseResult result = kOldResult;
  const int status =
      P::ParseField(&result, static_cast<unsigned short>(flags & 3), bytes, 31, text.c_str(), type,
                    (flags & 4) != 0 ? &format : nullptr,
                    static_cast<eCalWeekStart>(flags >> 3 & 1), flags >> 4 & 1, flags >> 5 & 1);
  if (status == 0) return CheckValue(type, result, bytes, IsRealDate(reference));
  Require(status == -1 && result == kOldResult);
  Require(std::memcmp(bytes, before, sizeof(bytes)) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static InputClock clock;
  if (size < kOptionBytes) return 0;
  clock.now.tm_year = 1753 - 1900 + (data[4] + data[5]) % 347;
  clock.now.tm_mon = data[3] % 12;
  clock.now.tm_mday = data[2] % 28 + 1;
  clock.now.tm_hour = data[1] % 24;
  const std::string text(reinterpret_cast<const char*>(data + kOptionBytes), size - kOptionBytes);
  for (int type = -1; type < kEditTypes; ++type) {
    ParseOnce(text, static_cast<P::eEditType>(type), data);
  }
  short priority = -1;
  const int status = P::ParsePriority(&priority, text.c_str(), data[0] & 1);
  Require(status == 0 ? (priority >= 0 && priority <= 100) || priority == P::kNoPriority
                      : status == -1 && priority == -1);
  return 0;
}
