#include "Builtins.h"

#include <array>
#include <cmath>

#include "support/Hex.h"
#include "support/Text.h"

namespace tarnwick::rex {
namespace {

Scalar Chr(std::span<const Scalar> arguments) { return Scalar::Text(Character(arguments[0].AsNumber())); }

Scalar Hex(std::span<const Scalar> arguments) { return Scalar::Number(HexValue(arguments[0].AsText())); }

// The code of the first character; 0 for "".
Scalar Ord(std::span<const Scalar> arguments) {
  const std::string text = arguments[0].AsText();
  return Scalar::Number(text.empty() ? 0 : static_cast<unsigned char>(text[0]));
}

Scalar Lc(std::span<const Scalar> arguments) { return Scalar::Text(LowerAscii(arguments[0].AsText())); }
Scalar Uc(std::span<const Scalar> arguments) { return Scalar::Text(UpperAscii(arguments[0].AsText())); }

Scalar SprintfBuiltin(std::span<const Scalar> arguments) {
  return Scalar::Text(Sprintf(arguments[0].AsText(), arguments.subspan(1)));
}

constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

constexpr std::array kBuiltins{
    Builtin{"chr", 1, 1, &Chr}, Builtin{"hex", 1, 1, &Hex}, Builtin{"ord", 1, 1, &Ord},
    Builtin{"lc", 1, 1, &Lc},   Builtin{"uc", 1, 1, &Uc},   Builtin{"sprintf", 1, kAnyNumber, &SprintfBuiltin},
};

}  // namespace

double HexValue(const std::string& text) {
  std::size_t at = 0;
  if (text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    at = 2;
  else if (!text.empty() && (text[0] == 'x' || text[0] == 'X'))
    at = 1;
  double value = 0;
  for (; at < text.size(); ++at) {
    if (text[at] == '_' && at + 1 < text.size() && HexDigitValue(text[at + 1]) >= 0) continue;
    const int digit = HexDigitValue(text[at]);
    if (digit < 0) break;
    value = value * 16 + digit;
  }
  return value;
}

std::string Character(double value) {
  const double number = std::trunc(value);
  if (number >= 0 && number <= 255) return std::string(1, static_cast<char>(static_cast<unsigned char>(number)));
  if (!(number > 255 && number <= 0x10FFFF)) return "?";
  const auto code = static_cast<std::uint32_t>(number);
  std::string utf8;
  if (code < 0x800) {
    utf8 = {static_cast<char>(0xC0 | (code >> 6)), static_cast<char>(0x80 | (code & 0x3F))};
  } else if (code < 0x10000) {
    utf8 = {static_cast<char>(0xE0 | (code >> 12)), static_cast<char>(0x80 | ((code >> 6) & 0x3F)),
            static_cast<char>(0x80 | (code & 0x3F))};
  } else {
    utf8 = {static_cast<char>(0xF0 | (code >> 18)), static_cast<char>(0x80 | ((code >> 12) & 0x3F)),
            static_cast<char>(0x80 | ((code >> 6) & 0x3F)), static_cast<char>(0x80 | (code & 0x3F))};
  }
  return Utf8ToAnsi(utf8);
}

const Builtin* FindBuiltin(std::string_view name) {
  for (const Builtin& builtin : kBuiltins) {
    if (builtin.name == name) return &builtin;
  }
  return nullptr;
}

}  // namespace tarnwick::rex
