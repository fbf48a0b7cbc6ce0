#include "terminal/Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <iterator>
#include <numeric>
#include <sstream>

namespace {

// A character of a text in UTF-8. A byte that is not UTF-8 is a character with the code `kBroken`.
struct Character {
  char32_t code;
  std::size_t size;  // in bytes
};

struct Range {
  char32_t first;
  char32_t last;
};

constexpr char32_t kBroken = 0xFFFFFFFF;

// Characters that command a terminal or change the order of the text.
constexpr Range kCommands[] = {{0x00, 0x1F},      {0x7F, 0x9F},     {0x61C, 0x61C},
                               {0x200E, 0x200F},  {0x2028, 0x202E}, {0x2066, 0x2069},
                               {kBroken, kBroken}};
constexpr Range kCombining[] = {
    {0x300, 0x36F},   {0x483, 0x489},   {0x591, 0x5BD},   {0x610, 0x61A},   {0x64B, 0x65F},
    {0xE31, 0xE31},   {0xE34, 0xE3A},   {0xE47, 0xE4E},   {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},
    {0x200B, 0x200D}, {0x20D0, 0x20FF}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}};
constexpr Range kWide[] = {{0x1100, 0x115F},   {0x2E80, 0x303E},  {0x3041, 0xA4CF},
                           {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},  {0xFE30, 0xFE6F},
                           {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},  {0x1F300, 0x1F64F},
                           {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t kCount>
bool IsIn(const Range (&ranges)[kCount], char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [&](const Range& range) { return range.first <= code && code <= range.last; });
}

Character First(std::string_view text) {
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};  // in so many bytes
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) return {lead, 1};
  const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC0 || lead > 0xF7 || text.size() < size) return {kBroken, 1};
  char32_t code = lead & (0x7FU >> size);
  for (std::size_t at = 1; at < size; ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte & 0xC0) != 0x80) return {kBroken, 1};
    code = code << 6 | (byte & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kLeast[size] || code > 0x10FFFF || surrogate) return {kBroken, 1};
  return {code, size};
}

std::size_t ColumnsOf(char32_t code) {
  if (IsIn(kCombining, code)) return 0;
  return IsIn(kWide, code) ? 2 : 1;
}

// Removes the first row from a line and returns it.
std::string_view TakeRow(std::string_view* line, std::size_t columns) {
  std::string_view row = Fitting(*line, columns);
  if (row.size() < line->size()) {
    const std::size_t blank = line->rfind(' ', row.size());
    if (blank != std::string_view::npos && blank != 0) row = row.substr(0, blank);
  }
  line->remove_prefix(row.size());
  line->remove_prefix(std::min(line->find_first_not_of(' '), line->size()));
  return row;
}

// The least number of characters to insert, remove or replace.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (const char letter : a) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (letter == b[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace

std::vector<std::string> SplitWords(std::string text) {
  std::replace(text.begin(), text.end(), ',', ' ');
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

std::optional<int> WholeNumber(const std::string& text, int least, int most) {
  int number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = error == std::errc() && rest == text.data() + text.size();
  return whole && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

std::string Counted(std::size_t number, const std::string& one, const std::string& many) {
  return std::to_string(number) + ' ' + (number == 1 ? one : many);
}

std::string WithoutTrailingBlanks(std::string text) {
  return text.erase(text.find_last_not_of(' ') + 1);
}

std::size_t Columns(std::string_view text) {
  std::size_t columns = 0;
  while (!text.empty()) {
    const Character first = First(text);
    columns += ColumnsOf(first.code);
    text.remove_prefix(first.size);
  }
  return columns;
}

std::string_view Fitting(std::string_view text, std::size_t columns) {
  std::size_t end = 0;
  while (end < text.size()) {
    const Character next = First(text.substr(end));
    const std::size_t needed = ColumnsOf(next.code);
    if (needed > columns) break;
    columns -= needed;
    end += next.size;
  }
  return text.substr(0, end);
}

std::vector<std::string> Wrap(std::string_view text, std::size_t columns) {
  columns = std::max<std::size_t>(columns, 2);  // or a wide character would never fit
  std::vector<std::string> rows;
  for (bool more = true; more;) {
    std::string_view line = text.substr(0, text.find('\n'));
    more = line.size() < text.size();
    text.remove_prefix(line.size() + (more ? 1 : 0));
    do {
      rows.push_back(WithoutTrailingBlanks(std::string(TakeRow(&line, columns))));
    } while (!line.empty());
  }
  return rows;
}

std::string Shown(std::string_view text) {
  std::string shown;
  while (!text.empty()) {
    const Character first = First(text);
    shown += IsIn(kCommands, first.code) ? "?" : text.substr(0, first.size);
    text.remove_prefix(first.size);
  }
  return shown;
}

std::string Escaped(std::string_view text, std::string_view special) {
  std::string escaped;
  for (const char character : Shown(text)) {
    if (special.find(character) != std::string_view::npos) escaped += '\\';
    escaped += character;
  }
  return escaped;
}

bool Contains(std::string_view text, std::string_view wanted) {
  const auto same = [](char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  };
  return wanted.empty() ||
         std::search(text.begin(), text.end(), wanted.begin(), wanted.end(), same) != text.end();
}

std::string Nearest(const std::string& mistyped, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = mistyped.size() > 4 ? 3 : 2;  // a name must be nearer than this
  for (const std::string& name : names) {
    const std::size_t distance = Distance(mistyped, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}
