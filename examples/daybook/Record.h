// The blocks of a daybook file. `Store.h` describes the whole format.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "Entry.h"

/// The first block. Its checksum has the same place in every version of the format.
struct Header {
  char magic[8];
  std::uint32_t version;
  std::uint32_t record_size;
  std::uint64_t id;    ///< a random number that no other file has; 0 in old files
  char reserved[228];  ///< 0
  std::uint32_t checksum;
};

/// The block of an entry.
struct Record {
  std::uint32_t moment;         ///< `un_date_time::Number`
  std::uint32_t cycle;          ///< `st_cyc_time::Number`
  std::int16_t quarter_anchor;  ///< 0 for an entry that does not recur
  std::uint16_t minutes;
  std::int16_t priority;
  std::uint16_t done;  ///< 0 or 1; 2 for an entry that was taken out
  char text[236];      ///< padded with 0
  std::uint32_t checksum;
};

/// A sector of the disk holds a whole number of blocks, so no block lies in two sectors.
inline constexpr int kBlockSize = 256;

static_assert(sizeof(Header) == kBlockSize && sizeof(Record) == kBlockSize);
static_assert(std::has_unique_object_representations_v<Header> &&
                  std::has_unique_object_representations_v<Record>,
              "gaps would contain random bytes");
static_assert(std::endian::native == std::endian::little, "the file is little-endian");

/// The header of a file with an identifier.
Header MakeHeader(std::uint64_t id);

/// The block of an entry that was taken out. It keeps its place, so nobody else gets its ID.
Record RemovedRecord();
bool IsRemoved(const Record& record);

/// Whether the checksum of a header is right.
bool IsIntact(const Header& header);

/// Makes the block of an entry. Throws `Rejection` if the text is too long.
Record Pack(const Entry& entry);

/// Returns the entry of a block, or nothing if the checksum is wrong.
std::optional<Entry> Unpack(const Record& record);

/// Whether all bytes are zeros. A block of zeros was never written: the file had grown, and then
/// its writer was killed or the power failed.
bool IsZeros(const void* bytes, std::size_t count);
