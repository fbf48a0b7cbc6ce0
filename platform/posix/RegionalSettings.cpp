// The user's regional settings, from the locale that the environment names.
#include <langinfo.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
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

// Fills settings that are empty. Returns whether they stand now, be it that there are none, and not
// that the host has failed, as it does without memory.
bool ReadLocale(const char* name, Settings& settings) {
  if (IsUnset(name)) return true;
  const locale_t locale = newlocale(LC_TIME_MASK, name, nullptr);
  if (locale == nullptr) return errno == ENOENT || errno == EINVAL;  // there is no such locale
  settings.known = true;
  WritePattern(nl_langinfo_l(D_FMT, locale), settings.short_date);
  settings.time_24hour = Is24Hour(nl_langinfo_l(T_FMT, locale)) ? 1 : 0;
  freelocale(locale);
  return true;
}

// What the environment says about the locale of dates and times. Its variables are looked for again
// only when an entry has become another string: that is seen much faster than they are found.
class Environment {
 public:
  // The name of the locale: the first of LC_ALL, LC_TIME and LANG that is set to something. Their
  // values are looked at each time, since the owner of a string may have changed it in place.
  const char* LocaleName() {
    const char* value = HasSameEntries() ? FirstValue() : nullptr;
    if (value == nullptr) {
      Look();
      value = FirstValue();
    }
    return value;
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

  // Null if one of the entries is another variable by now: its owner may have given the string
  // back, and the memory may hold a shorter one.
  const char* FirstValue() const {
#pragma GCC unroll 3
    for (std::size_t i = 0; i < std::size(kVariables); ++i) {
      if (found_[i] == nullptr) continue;
      if (!IsOf(found_[i], kVariables[i])) return nullptr;
      const char* const value = found_[i] + kVariables[i].size();
      if (*value != '\0') return value;
    }
    return "";
  }

  // Unrolled for each variable, this costs less than a call of `strncmp`.
  static bool IsOf(const char* entry, std::string_view variable) {
#pragma GCC unroll 8
    for (std::size_t i = 0; i < variable.size(); ++i) {
      if (entry[i] != variable[i]) return false;
    }
    return true;
  }

  // One walk over the environment finds all three variables. Like the reading of a locale below it
  // stands apart, so that the usual call needs no room for it.
  [[gnu::noinline]] void Look() {
    std::fill(std::begin(found_), std::end(found_), nullptr);
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
      if (found_[i] == nullptr && IsOf(entry, kVariables[i])) found_[i] = entry;
    }
  }

  const char* entries_[kMostEntries] = {};
  std::size_t count_ = 0;  // of `entries_`; 0 if there is nothing to compare with
  const char* found_[std::size(kVariables)] = {};  // entries; null where the variable is missing
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
    name_[0] = '\0';
    settings_ = {};
    const std::size_t length = std::strlen(name);
    if (length >= kNameSize) return;  // no locale has a name like that
    if (ReadLocale(name, settings_)) std::memcpy(name_, name, length + 1);
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
