#include "settings/SettingValue.h"

#include <cmath>
#include <cstdlib>
#include <optional>

#include "support/Text.h"

namespace tarnwick {
namespace {

std::string_view Trim(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The number a text denotes, or nullopt when it is not numeric.
std::optional<double> NumberOfText(std::string_view raw) {
  const std::string_view text = Trim(raw);
  if (text.size() > 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h')) {
    const std::string_view digits = text.substr(2);
    if (digits.size() > 8) return std::nullopt;
    std::uint32_t number = 0;
    for (char c : digits) {
      const char lower = static_cast<char>(c | 0x20);
      if (c >= '0' && c <= '9') {
        number = number * 16 + static_cast<std::uint32_t>(c - '0');
      } else if (lower >= 'a' && lower <= 'f') {
        number = number * 16 + static_cast<std::uint32_t>(lower - 'a' + 10);
      } else {
        return std::nullopt;
      }
    }
    // Up to four digits is a 16-bit literal, more a 32-bit one, both signed.
    if (digits.size() <= 4) return static_cast<double>(static_cast<std::int16_t>(number));
    return static_cast<double>(static_cast<std::int32_t>(number));
  }
  // Decimal: sign, digits with an optional point, optional exponent.
  std::size_t pos = 0;
  if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
  std::size_t digits = 0;
  while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos, ++digits;
  if (pos < text.size() && text[pos] == '.') {
    ++pos;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos, ++digits;
  }
  if (digits == 0) return std::nullopt;
  if (pos < text.size() && (text[pos] == 'e' || text[pos] == 'E')) {
    ++pos;
    if (pos < text.size() && (text[pos] == '+' || text[pos] == '-')) ++pos;
    std::size_t exponentDigits = 0;
    while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') ++pos, ++exponentDigits;
    if (exponentDigits == 0) return std::nullopt;
  }
  if (pos != text.size()) return std::nullopt;
  return std::strtod(std::string(text).c_str(), nullptr);
}

}  // namespace

std::int32_t ToLong(const SettingValue& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  const auto parsed = NumberOfText(std::get<std::string>(value));
  if (!parsed) throw ConversionError(kErrTypeMismatch, "Type mismatch");
  const double rounded = std::nearbyint(*parsed);
  if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0)) throw ConversionError(kErrOverflow, "Overflow");
  return static_cast<std::int32_t>(rounded);
}

std::int16_t ToInteger(const SettingValue& value) {
  const std::int32_t number = ToLong(value);
  if (number < INT16_MIN || number > INT16_MAX) throw ConversionError(kErrOverflow, "Overflow");
  return static_cast<std::int16_t>(number);
}

double ToDouble(const SettingValue& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  const auto parsed = NumberOfText(std::get<std::string>(value));
  if (!parsed) throw ConversionError(kErrTypeMismatch, "Type mismatch");
  return *parsed;
}

bool ToBoolean(const SettingValue& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number != 0;
  const std::string_view text = Trim(std::get<std::string>(value));
  if (EqualsIgnoreCase(text, "True")) return true;
  if (EqualsIgnoreCase(text, "False")) return false;
  const auto parsed = NumberOfText(text);
  if (!parsed) throw ConversionError(kErrTypeMismatch, "Type mismatch");
  return *parsed != 0.0;
}

std::string ToText(const SettingValue& value) {
  if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
  return std::get<std::string>(value);
}

}  // namespace tarnwick
