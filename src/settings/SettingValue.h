// A value as the settings store hands it over: a 32-bit number or a text.
// Conversions to the options' types follow the rules the settings have always
// had: "abc" is no number (type mismatch, 13), 2^31 is too large (overflow, 6).
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <variant>

namespace tarnwick {

using SettingValue = std::variant<std::int32_t, std::string>;

inline constexpr int kErrOverflow = 6;
inline constexpr int kErrTypeMismatch = 13;

class ConversionError : public std::runtime_error {
 public:
  ConversionError(int number, const char* description) : std::runtime_error(description), number_(number) {}
  int number() const { return number_; }

 private:
  int number_;
};

// Number or numeric text to a 32-bit integer: surrounding blanks allowed, a
// fraction rounds half to even, "&H" introduces hexadecimal. Throws
// ConversionError.
std::int32_t ToLong(const SettingValue& value);
// As ToLong, within a signed 16-bit range. Throws ConversionError.
std::int16_t ToInteger(const SettingValue& value);
// Number or numeric text to a double (no rounding). Throws ConversionError.
double ToDouble(const SettingValue& value);
// Zero is false, any other number true; "True" and "False" in any case.
// Throws ConversionError.
bool ToBoolean(const SettingValue& value);
// Texts as they are; numbers as decimal text.
std::string ToText(const SettingValue& value);

}  // namespace tarnwick
