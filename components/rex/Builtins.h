// The functions a replacement expression may call: chr, hex, ord, lc, uc
// and sprintf, with Perl's meaning over the program's Windows-1252 text.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "Scalar.h"

namespace tarnwick::rex {

struct Builtin {
  std::string_view name;
  std::size_t minArguments;
  std::size_t maxArguments;
  Scalar (*call)(std::span<const Scalar> arguments);
};

// The function called `name`, or nullptr.
const Builtin* FindBuiltin(std::string_view name);

// The hexadecimal number `text` starts with ("0x" or "x" may lead,
// underscores may separate digits); reading stops at the first other
// character, so "zz" is 0.
double HexValue(const std::string& text);

// The character with code `code` (its fraction cut off): a byte up to 255;
// above that the Windows-1252 byte of that Unicode character (8364, the euro
// sign, is 0x80), or "?" where the code page has none.
std::string Character(double code);

// Perl's sprintf: flags, width, precision (each may be "*"), the conversions
// c s d i u o x X b B e E f F g G and %%; a conversion it does not know is
// copied as it stands, and missing arguments count as undefined.
std::string Sprintf(const std::string& format, std::span<const Scalar> arguments);

}  // namespace tarnwick::rex
