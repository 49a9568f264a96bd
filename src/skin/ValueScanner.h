#pragma once

// Reads numbers out of skin value texts the way the C library's scanf
// family reads the formats "%d", "%i", "%f" and lists such as "%d, %d",
// but independent of the process locale:
//  - a number may follow any run of white space;
//  - in a list, a number must be followed directly by ',', after which any
//    run of white space (possibly none) is skipped, so "1,2" and "1, 2"
//    both read while "1 ,2" stops after the first number;
//  - "%i" takes its base from the prefix: 0x hexadecimal, 0 octal, else
//    decimal, so "010" reads as 8;
//  - integers keep the low 32 bits of the value, so "0xFF102030" read as
//    "%i" is the bit pattern 0xFF102030.
// Internal to the skin layer.

#include <cstdint>

namespace KarvelUI {

class ValueScanner {
 public:
  explicit ValueScanner(const wchar_t* text) : m_at(text ? text : L"") {}

  // "%d"; false (value untouched) when no number starts here.
  bool ReadInt(std::int32_t& value);
  // "%i".
  bool ReadAutoBaseInt(std::int32_t& value);
  // "%f".
  bool ReadFloat(float& value);
  // The ", " between list items: ',' exactly, then optional white space.
  bool ReadSeparator();
  // Nothing but white space is left (a value a checker calls well formed).
  bool AtEnd();

  // "%d, %d, ..." into values[0..count); the number of values read.
  static int ReadIntList(const wchar_t* text, std::int32_t* values, int count);

 private:
  void SkipSpace();
  // Reads digits of `base` with a sign already consumed; false when none.
  bool ReadDigits(int base, bool negative, std::int32_t& value);

  const wchar_t* m_at;
};

}  // namespace KarvelUI
