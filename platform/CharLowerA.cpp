// Lower case in code page 1252.
#include <array>

#include "platform/system.h"

namespace orzcore::platform {
namespace {

struct Range {
  unsigned char first;
  unsigned char last;
  unsigned char distance;  // from a capital to its small letter
};

constexpr Range kCapitals[] = {
    {'A', 'Z', 0x20},    // the letters of ASCII
    {0x8A, 0x8A, 0x10},  // S with caron
    {0x8C, 0x8C, 0x10},  // OE
    {0x8E, 0x8E, 0x10},  // Z with caron
    {0x9F, 0x9F, 0x60},  // Y with diaeresis
    {0xC0, 0xD6, 0x20},  // A with grave to O with diaeresis; 0xD7 is the multiplication sign
    {0xD8, 0xDE, 0x20},  // O with stroke to thorn
};

constexpr std::array<unsigned char, 256> MakeLowerTable() {
  std::array<unsigned char, 256> table = {};
  for (unsigned code = 0; code < table.size(); ++code) {
    table[code] = static_cast<unsigned char>(code);
  }
  for (const Range& range : kCapitals) {
    for (unsigned code = range.first; code <= range.last; ++code) {
      table[code] = static_cast<unsigned char>(code + range.distance);
    }
  }
  return table;
}

constexpr std::array<unsigned char, 256> kLower = MakeLowerTable();

}  // namespace

char CharLowerA(char character) {
  return static_cast<char>(kLower[static_cast<unsigned char>(character)]);
}

char* CharLowerA(char* text) {
  for (char* p = text; *p != '\0'; ++p) *p = CharLowerA(*p);
  return text;
}

}  // namespace orzcore::platform
