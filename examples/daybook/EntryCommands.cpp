// The commands that add and change entries.
#include <algorithm>
#include <iostream>
#include <iterator>

#include "Commands.h"
#include "Store.h"
#include "fields/FieldKinds.h"
#include "orzcore/foundation.h"
#include "terminal/Terminal.h"
#include "terminal/Text.h"

namespace {

// The setters return false if the field rejects the text. Then the entry is unchanged.

bool SetTime(Entry& entry, const std::string& text, const Settings& settings) {
  OZParser::eParseResult result = OZParser::eParseNone;
  auto time = static_cast<short>(entry.moment.time);
  const bool accepted = OZParser::ParseTime(&result, 0, &time, OZDate::kNoTime, text.c_str(),
                                            settings.Hours24() ? 1 : 0) == 0;
  if (accepted) entry.moment.time = static_cast<std::uint32_t>(time) & 0x7FF;
  return accepted;
}

bool SetLength(Entry& entry, const std::string& text, const Settings& /*settings*/) {
  constexpr int kTenths = 10;  // of a minute
  ST_TIME_RETURN_VAL length{};
  if (OZParser::ParseRealTI(&length, text.c_str()) != 0) return false;
  const std::int32_t minutes = (length.value + kTenths / 2) / kTenths;
  if (length.value < 0 || minutes > OZDate::kEndOfDay) return false;
  entry.minutes = static_cast<std::uint16_t>(minutes);
  return true;
}

bool SetPriority(Entry& entry, const std::string& text, const Settings& /*settings*/) {
  return OZParser::ParsePriority(&entry.priority, text.c_str(), 1) == 0;
}

struct Field {
  const char* name;
  const char* accepts;
  bool (*set)(Entry& entry, const std::string& text, const Settings& settings);
};

constexpr Field kFields[] = {
    {"time", "9:30, 930p, noon, now, none", SetTime},
    {"length", "2:30, 1.5 h, 20 m, up to 24 h", SetLength},
    {"priority", "hi, lo, c5, 35, none", SetPriority},
};

// Sets the fields that the command line has. The words from `text_begin` on are the text; without
// them the text is unchanged.
void SetFields(Entry& entry, const Options& options, const Settings& settings,
               std::size_t text_begin) {
  if (const auto* const text = options.Find("--date")) {
    entry.moment = ReadDate(*text, entry.moment, settings);
  }
  for (const Field& field : kFields) {
    const auto* const text = options.Find(std::string("--") + field.name);
    if (text == nullptr || field.set(entry, *text, settings)) continue;
    throw Rejection(std::string("the ") + field.name + " field rejects '" + *text +
                    "'; it accepts: " + field.accepts);
  }
  if (const auto* const text = options.Find("--every")) {
    entry.rule =
        stricmp(text->c_str(), "none") == 0 ? std::nullopt : std::optional(ReadRule(*text));
  }
  if (options.Words().size() <= text_begin) return;
  entry.text = WithoutTrailingBlanks(options.Text(text_begin, options.Words().size()));
  if (entry.text.empty()) throw Rejection("the text is empty");
}

}  // namespace

std::string ExplainEntry() {
  std::string help = std::string("What to type: --date ") + FindFieldKind("date").accepts;
  for (const Field& field : kFields) {
    help += std::string("\n  --") + field.name + ' ' + field.accepts;
  }
  return help + R"(
Dates go from 1753 to 2099. A date such as +3 d counts from today; in 'edit', it
counts from the date of the entry.

)" + kRuleHelp;
}

// Says what is on the disk now. So a failure to say it must not look like a failure to store it.
static void Tell(const std::string& what, const std::string& details) {
  if (std::cout << what << details << std::endl) return;
  throw Rejection(OutputErrorText(OutputError()) + "; the file has the change: " + what);
}

static void TellStored(int id, const Entry& entry, const Settings& settings) {
  Tell("stored as " + std::to_string(id), ": " + Summary(entry, settings));
}

ExitStatus RunAdd(const Options& options) {
  const Settings settings(options);
  Entry entry;
  entry.moment = OZDate::CurDateTime();
  entry.moment.time = OZDate::kNoTime;
  SetFields(entry, options, settings, 1);
  TellStored(Store(options, Store::kCreating).Add(entry), entry, settings);
  return kSuccess;
}

static int ReadId(const std::string& text) {
  if (const auto id = WholeNumber(text, 1, Store::kMostEntries)) return *id;
  throw UsageError("ID is '" + text + "': it must be the number of an entry");
}

ExitStatus RunEdit(const Options& options) {
  const Settings settings(options);
  const int id = ReadId(options.Words()[1]);
  const bool changes =
      options.Words().size() > 2 || options.Has("--date") || options.Has("--every") ||
      std::any_of(std::begin(kFields), std::end(kFields),
                  [&](const Field& field) { return options.Has(std::string("--") + field.name); });
  if (!changes) throw UsageError("edit needs WORDS or an option that changes the entry");
  Entry stored;
  Store(options, Store::kChanging).Change(id, [&](Entry& entry) {
    SetFields(entry, options, settings, 2);
    stored = entry;
  });
  TellStored(id, stored, settings);
  return kSuccess;
}

static std::string Details(const Entry& entry, const Settings& settings) {
  return ": " + Summary(entry, settings) + "  " + Shown(entry.text);
}

ExitStatus RunDone(const Options& options) {
  const Settings settings(options);
  const bool done = !options.Has("--undo");
  const int id = ReadId(options.Words()[1]);
  Entry changed;
  Store(options, Store::kChanging).Change(id, [&](Entry& entry) {
    entry.done = done;
    changed = entry;
  });
  Tell((done ? "done " : "not done ") + std::to_string(id), Details(changed, settings));
  return kSuccess;
}

ExitStatus RunRemove(const Options& options) {
  const Settings settings(options);
  std::vector<int> ids;
  for (std::size_t i = 1; i < options.Words().size(); ++i)
    ids.push_back(ReadId(options.Words()[i]));
  Store store(options, Store::kChanging);
  for (const int id : ids) {
    const auto entry = store.Remove(id);
    Tell("removed " + std::to_string(id), entry ? Details(*entry, settings) : ": it was damaged");
  }
  return kSuccess;
}
