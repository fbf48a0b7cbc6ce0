// What stands in the blocks of a daybook file; `Store.h` tells the whole format.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "Entry.h"

/// The first block. Its checksum stands at the same place in every version.
struct Header {
  char magic[8];
  std::uint32_t version;
  std::uint32_t record_size;
  char reserved[236];  ///< 0
  std::uint32_t checksum;
};

/// An entry in its block.
struct Record {
  std::uint32_t moment;         ///< number of the `un_date_time`
  std::uint32_t cycle;          ///< number of the `st_cyc_time`
  std::int16_t quarter_anchor;  ///< 0 for an entry that does not recur
  std::uint16_t minutes;
  std::int16_t priority;
  std::uint16_t done;  ///< 0 or 1
  char text[236];      ///< padded with 0
  std::uint32_t checksum;
};

/// Divides a sector of the disk, so that no block straddles two.
inline constexpr int kBlockSize = 256;

static_assert(sizeof(Header) == kBlockSize && sizeof(Record) == kBlockSize);
static_assert(std::has_unique_object_representations_v<Header> &&
                  std::has_unique_object_representations_v<Record>,
              "no gaps, which would hold anything");
static_assert(std::endian::native == std::endian::little, "the file is little-endian");

/// The header of a new file.
Header NewHeader();

/// Tells whether a header is as it was written.
bool IsIntact(const Header& header);

/// Throws `Rejection` if the text is too long.
Record Pack(const Entry& entry);

/// Returns nothing for a record that is not as it was written.
std::optional<Entry> Unpack(const Record& record);

/// Whether all bytes are zeros. A block of zeros was never written: the file had grown, and then its
/// writer was killed or the power failed.
bool IsZeros(const void* bytes, std::size_t count);
