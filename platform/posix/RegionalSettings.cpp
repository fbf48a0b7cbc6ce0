// The user's regional settings, from the locale that the environment names.
#include <langinfo.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

#include "orzcore/platform.h"
#include "platform/RefreshTimer.h"

namespace orzcore::platform {
namespace {

constexpr std::size_t kPatternSize = 50;

// What the section "Intl" holds for one locale.
struct Settings {
  bool known = false;                  // false: the locale has no entries
  char short_date[kPatternSize] = {};  // in the letters d, M and y
  int time_24hour = 0;
};

struct DatePart {
  char conversion;  // of the locale's date format
  const char* pattern;
};

constexpr DatePart kDateParts[] = {
    {'d', "dd"},   {'e', "d"},        {'m', "MM"},         {'b', "MMM"}, {'h', "MMM"},
    {'B', "MMMM"}, {'y', "yy"},       {'Y', "yyyy"},       {'a', ""},    {'A', ""},
    {'C', ""},     {'D', "MM/dd/yy"}, {'F', "yyyy-MM-dd"}, {'x', ""},
};

constexpr std::string_view kHalfDayConversions = "IlrpP";

// The conversion at a '%', past its flags and modifiers, as in %-d or %Od. Moves `format` there.
char Conversion(const char*& format) {
  do ++format;
  while (*format != '\0' && std::strchr("EO-_^#0", *format) != nullptr);
  return *format;
}

// Writes a locale's date format as a pattern. Words between the parts are left out: their letters
// would be taken for parts.
void WritePattern(const char* format, char (&pattern)[kPatternSize]) {
  std::size_t length = 0;
  const auto append = [&](std::string_view text) {
    const std::size_t count = std::min(text.size(), kPatternSize - 1 - length);
    std::memcpy(pattern + length, text.data(), count);
    length += count;
  };
  for (; *format != '\0'; ++format) {
    if (*format == '%') {
      const char conversion = Conversion(format);
      if (conversion == '\0') break;
      for (const DatePart& part : kDateParts) {
        if (part.conversion == conversion) append(part.pattern);
      }
    } else if (std::strchr("/.-, ", *format) != nullptr) {
      append({format, 1});
    }
  }
  pattern[length] = '\0';
}

bool Is24Hour(const char* format) {
  for (; *format != '\0'; ++format) {
    if (*format != '%') continue;
    const char conversion = Conversion(format);
    if (conversion == '\0') break;
    if (kHalfDayConversions.find(conversion) != std::string_view::npos) return false;
  }
  return true;
}

// "C" and "POSIX" say that the user has set nothing, whatever the character set behind the dot.
bool IsUnset(const char* name) {
  const std::string_view base = std::string_view(name).substr(0, std::strcspn(name, "."));
  return base.empty() || base == "C" || base == "POSIX";
}

// The name of the locale of dates and times: the value of the first variable that is not empty.
const char* LocaleName() {
  for (const char* const variable : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* const name = std::getenv(variable);
    if (name != nullptr && *name != '\0') return name;
  }
  return "";
}

// Reads the settings of a locale. Returns false if they are not known for lack of memory.
bool ReadLocale(const char* name, Settings& settings) {
  settings = {};
  if (IsUnset(name)) return true;
  errno = 0;
  const locale_t locale = newlocale(LC_TIME_MASK, name, nullptr);
  // There is no such locale. A second call for the same name leaves `errno` alone.
  if (locale == nullptr) return errno == ENOENT || errno == EINVAL || errno == 0;
  settings.known = true;
  WritePattern(nl_langinfo_l(D_FMT, locale), settings.short_date);
  settings.time_24hour = Is24Hour(nl_langinfo_l(T_FMT, locale)) ? 1 : 0;
  freelocale(locale);
  return true;
}

// Apart, so that the calls that find the settings kept need no room for it.
[[gnu::noinline]] void Refresh(time_t now, RefreshTimer& timer, Settings& settings) {
  if (ReadLocale(LocaleName(), settings)) timer.Restart(now);
}

// The settings in force now. Reading a locale costs microseconds, so they are kept.
const Settings& CurrentSettings() {
  constinit static RefreshTimer timer;
  constinit static Settings settings;
  const time_t now = time(nullptr);
  if (timer.IsDue(now)) Refresh(now, timer, settings);
  return settings;
}

// Compares without regard to case. `lower_case` has letters only: they differ from capitals by one
// bit. A call of `strcasecmp` costs more, and depends on the locale of the process.
bool IsName(const char* name, std::string_view lower_case) {
  for (const char letter : lower_case) {
    if ((*name++ | 0x20) != letter) return false;
  }
  return *name == '\0';
}

bool IsEntry(const char* section, const char* key, std::string_view wanted) {
  return IsName(section, "intl") && IsName(key, wanted);
}

}  // namespace
}  // namespace orzcore::platform

namespace platform = orzcore::platform;

int OZHost::GetProfileStringA(const char* section, const char* key, const char* fallback,
                              char* buffer, int size) {
  if (size <= 0) return 0;
  const platform::Settings& settings = platform::CurrentSettings();
  const bool known = settings.known && platform::IsEntry(section, key, "sshortdate");
  const std::string_view text = known ? settings.short_date : fallback;
  const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return static_cast<int>(count);
}

int OZHost::GetProfileIntA(const char* section, const char* key, int fallback) {
  const platform::Settings& settings = platform::CurrentSettings();
  return settings.known && platform::IsEntry(section, key, "itime") ? settings.time_24hour
                                                                    : fallback;
}
