// The user's regional settings, from the locale that the environment names.
#include <langinfo.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstring>
#include <string_view>

#include "orzcore/platform.h"

namespace {

constexpr std::size_t kPatternSize = 50;
constexpr std::size_t kNameSize = 128;

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

Settings ReadLocale(const char* name) {
  Settings settings;
  if (IsUnset(name)) return settings;
  const locale_t locale = newlocale(LC_TIME_MASK, name, nullptr);
  if (locale == nullptr) return settings;
  settings.known = true;
  WritePattern(nl_langinfo_l(D_FMT, locale), settings.short_date);
  settings.time_24hour = Is24Hour(nl_langinfo_l(T_FMT, locale)) ? 1 : 0;
  freelocale(locale);
  return settings;
}

// What the environment says about the locale of dates and times. Its variables are looked for again
// only when an entry has become another string: that is seen much faster than they are found.
class Environment {
 public:
  // The name of the locale: the first of LC_ALL, LC_TIME and LANG that is set to something. Their
  // values are looked at each time, since the owner of a string may have changed it in place.
  const char* LocaleName() {
    if (!HasSameEntries()) Look();
    for (const char* value : values_) {
      if (value != nullptr && *value != '\0') return value;
    }
    return "";
  }

 private:
  static constexpr std::string_view kVariables[] = {"LC_ALL=", "LC_TIME=", "LANG="};
  static constexpr std::size_t kMostEntries = 256;  // a larger environment is looked at each time

  // Reads no entry before the one in front of it was found to be there.
  bool HasSameEntries() const {
    if (environ == nullptr || count_ == 0) return false;
#pragma GCC unroll 8
    for (std::size_t i = 0; i < count_; ++i) {
      if (environ[i] != entries_[i]) return false;
    }
    return environ[count_] == nullptr;
  }

  // One walk over the environment finds all three variables. Like the reading of a locale below it
  // stands apart, so that the usual call needs no room for it.
  [[gnu::noinline]] void Look() {
    std::fill(std::begin(values_), std::end(values_), nullptr);
    std::size_t count = 0;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
      if (count < kMostEntries) entries_[count] = *entry;
      ++count;
      if ((*entry)[0] == 'L') Note(*entry);
    }
    count_ = count <= kMostEntries ? count : 0;
  }

  void Note(const char* entry) {
    for (std::size_t i = 0; i < std::size(kVariables); ++i) {
      const std::string_view variable = kVariables[i];
      if (values_[i] == nullptr && std::strncmp(entry, variable.data(), variable.size()) == 0) {
        values_[i] = entry + variable.size();
      }
    }
  }

  const char* entries_[kMostEntries] = {};
  std::size_t count_ = 0;  // of `entries_`; 0 if there is nothing to compare with
  const char* values_[std::size(kVariables)] = {};  // null where the variable is missing
};

// The settings of the locale that was read last. Reading one costs microseconds, so they are kept
// for as long as the environment names it.
class KeptSettings {
 public:
  const Settings& Of(const char* name) {
    if (std::strcmp(name, name_) != 0) Read(name);
    return settings_;
  }

 private:
  [[gnu::noinline]] void Read(const char* name) {
    settings_ = ReadLocale(name);
    const std::size_t length = std::strlen(name);
    if (length < kNameSize) {
      std::memcpy(name_, name, length + 1);
    } else {
      name_[0] = '\0';
      settings_.known = false;  // no locale has a name like that
    }
  }

  char name_[kNameSize] = "";
  Settings settings_;
};

// The settings in force now.
const Settings& CurrentSettings() {
  constinit static Environment environment;
  constinit static KeptSettings kept;
  return kept.Of(environment.LocaleName());
}

bool IsEntry(const char* section, const char* key, const char* wanted) {
  return strcasecmp(section, "Intl") == 0 && strcasecmp(key, wanted) == 0;
}

}  // namespace

int OZHost::GetProfileStringA(const char* section, const char* key, const char* fallback,
                              char* buffer, int size) {
  if (size <= 0) return 0;
  const Settings& settings = CurrentSettings();
  const bool known = settings.known && IsEntry(section, key, "sShortDate");
  const std::string_view text = known ? settings.short_date : fallback;
  const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return static_cast<int>(count);
}

int OZHost::GetProfileIntA(const char* section, const char* key, int fallback) {
  const Settings& settings = CurrentSettings();
  return settings.known && IsEntry(section, key, "iTime") ? settings.time_24hour : fallback;
}
