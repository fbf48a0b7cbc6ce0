#include "Record.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <string_view>

#include "Commands.h"

namespace {

// The CRC-32 of zip files, which finds every fault of up to 32 bits in a row. The table makes it
// fast enough for a list, which checks thousands of records.
constexpr std::array<std::uint32_t, 256> kCrcTable = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320 : 0);
    table[byte] = crc;
  }
  return table;
}();

// The checksum of all bytes before the checksum of a block.
template <typename Block>
std::uint32_t ChecksumOf(const Block& block) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&block);
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 0; i < offsetof(Block, checksum); ++i) {
    crc = crc >> 8 ^ kCrcTable[(crc ^ bytes[i]) & 0xFF];
  }
  return ~crc;
}

}  // namespace

Header MakeHeader(std::uint64_t id) {
  Header header = {{'D', 'A', 'Y', 'B', 'O', 'O', 'K', '\n'}, 1, kBlockSize, id, {}, 0};
  header.checksum = ChecksumOf(header);
  return header;
}

bool IsIntact(const Header& header) { return header.checksum == ChecksumOf(header); }

static constexpr std::uint16_t kRemoved = 2;

Record RemovedRecord() {
  Record record{};
  record.done = kRemoved;
  record.checksum = ChecksumOf(record);
  return record;
}

bool IsRemoved(const Record& record) {
  return record.done == kRemoved && record.checksum == ChecksumOf(record);
}

Record Pack(const Entry& entry) {
  Record record{};
  if (entry.text.size() > sizeof record.text) {
    throw Rejection("the text has " + std::to_string(entry.text.size()) +
                    " bytes, and an entry holds " + std::to_string(sizeof record.text));
  }
  record.moment = entry.moment.Number();
  record.cycle = entry.rule ? entry.rule->cycle.Number() : 0;
  record.quarter_anchor = entry.rule ? entry.rule->quarter_anchor : std::int16_t{0};
  record.minutes = entry.minutes;
  record.priority = entry.priority;
  record.done = entry.done ? 1 : 0;
  std::copy(entry.text.begin(), entry.text.end(), record.text);
  record.checksum = ChecksumOf(record);
  return record;
}

std::optional<Entry> Unpack(const Record& record) {
  if (record.checksum != ChecksumOf(record)) return std::nullopt;
  Entry entry = {.moment = un_date_time::FromNumber(record.moment),
                 .minutes = record.minutes,
                 .priority = record.priority,
                 .done = record.done != 0,
                 .rule = std::nullopt,
                 .text = {record.text, std::find(record.text, std::end(record.text), '\0')}};
  if (record.quarter_anchor != 0) {
    entry.rule = Rule{st_cyc_time::FromNumber(record.cycle), record.quarter_anchor};
  }
  return entry;
}

bool IsZeros(const void* bytes, std::size_t count) {
  const std::string_view text(static_cast<const char*>(bytes), count);
  return text.find_first_not_of('\0') == std::string_view::npos;
}
