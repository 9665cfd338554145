#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>

#include "Builtins.h"

namespace tarnwick::rex {
namespace {

struct Conversion {
  std::string flags;
  int width = -1;
  int precision = -1;
  char type = 0;
};

bool OneOf(const char* set, char letter) { return letter != '\0' && std::strchr(set, letter) != nullptr; }

// Reads "*" (the next argument) or digits; nullopt when neither is there.
std::optional<int> ReadCount(const std::string& format, std::size_t& at, std::span<const Scalar> arguments,
                             std::size_t& next) {
  if (at < format.size() && format[at] == '*') {
    ++at;
    const double count = next < arguments.size() ? arguments[next++].AsNumber() : 0;
    return static_cast<int>(std::clamp(count, -100000.0, 100000.0));
  }
  if (at >= format.size() || !std::isdigit(static_cast<unsigned char>(format[at]))) return std::nullopt;
  int count = 0;
  while (at < format.size() && std::isdigit(static_cast<unsigned char>(format[at])) && count < 100000) {
    count = count * 10 + (format[at++] - '0');
  }
  return count;
}

std::string Pad(std::string text, const Conversion& conversion) {
  if (conversion.width < 0 || text.size() >= static_cast<std::size_t>(conversion.width)) return text;
  const std::size_t fill = static_cast<std::size_t>(conversion.width) - text.size();
  if (conversion.flags.find('-') != std::string::npos) return text + std::string(fill, ' ');
  return std::string(fill, ' ') + text;
}

// A number through the C library's own conversion, with the flags, width and
// precision of the format.
template <typename Number>
std::string Formatted(const Conversion& conversion, const char* length, Number number) {
  std::string directive = "%" + conversion.flags;
  if (conversion.width >= 0) directive += std::to_string(conversion.width);
  if (conversion.precision >= 0) directive += "." + std::to_string(conversion.precision);
  directive += length;
  directive += conversion.type;
  const int size = std::snprintf(nullptr, 0, directive.c_str(), number);
  if (size < 0) return {};
  std::string text(static_cast<std::size_t>(size) + 1, '\0');
  std::snprintf(text.data(), text.size(), directive.c_str(), number);
  text.pop_back();
  return text;
}

std::string Binary(const Conversion& conversion, std::uint64_t number) {
  std::string digits;
  do {
    digits.insert(digits.begin(), static_cast<char>('0' + (number & 1)));
    number >>= 1;
  } while (number != 0);
  if (conversion.precision >= 0 && digits.size() < static_cast<std::size_t>(conversion.precision)) {
    digits.insert(0, static_cast<std::size_t>(conversion.precision) - digits.size(), '0');
  }
  if (conversion.flags.find('#') != std::string::npos && digits != "0")
    digits.insert(0, conversion.type == 'B' ? "0B" : "0b");
  const bool zeroFill =
      conversion.flags.find('0') != std::string::npos && conversion.flags.find('-') == std::string::npos;
  if (zeroFill && conversion.width > 0 && digits.size() < static_cast<std::size_t>(conversion.width)) {
    digits.insert(0, static_cast<std::size_t>(conversion.width) - digits.size(), '0');
  }
  return Pad(digits, conversion);
}

// Perl turns a number into an integer by cutting off the fraction, and
// treats values beyond the 64-bit range as the nearest end of it.
std::int64_t Signed(double number) {
  if (std::isnan(number)) return 0;
  if (number >= 9.2233720368547758e18) return INT64_MAX;
  if (number <= -9.2233720368547758e18) return INT64_MIN;
  return static_cast<std::int64_t>(number);
}

std::uint64_t Unsigned(double number) {
  if (number < 0) return static_cast<std::uint64_t>(Signed(number));
  if (std::isnan(number)) return 0;
  if (number >= 1.8446744073709552e19) return UINT64_MAX;
  return static_cast<std::uint64_t>(number);
}

std::string Convert(const Conversion& conversion, const Scalar& argument) {
  switch (conversion.type) {
    case 'c': return Pad(Character(argument.AsNumber()), conversion);
    case 's': {
      std::string text = argument.AsText();
      if (conversion.precision >= 0 && text.size() > static_cast<std::size_t>(conversion.precision)) {
        text.resize(static_cast<std::size_t>(conversion.precision));
      }
      return Pad(text, conversion);
    }
    case 'd':
    case 'i': return Formatted(conversion, "ll", static_cast<long long>(Signed(argument.AsNumber())));
    case 'u':
    case 'o':
    case 'x':
    case 'X': return Formatted(conversion, "ll", static_cast<unsigned long long>(Unsigned(argument.AsNumber())));
    case 'b':
    case 'B': return Binary(conversion, Unsigned(argument.AsNumber()));
    default: return Formatted(conversion, "", argument.AsNumber());  // e E f F g G
  }
}

}  // namespace

std::string Sprintf(const std::string& format, std::span<const Scalar> arguments) {
  static constexpr const char* kTypes = "csdiuoxXbBeEfFgG";
  std::string out;
  std::size_t next = 0;
  std::size_t at = 0;
  while (at < format.size()) {
    const std::size_t percent = format.find('%', at);
    out.append(format, at, percent == std::string::npos ? std::string::npos : percent - at);
    if (percent == std::string::npos) break;
    at = percent + 1;
    if (at < format.size() && format[at] == '%') {
      out += '%';
      ++at;
      continue;
    }
    Conversion conversion;
    while (at < format.size() && OneOf("-+ 0#", format[at])) conversion.flags += format[at++];
    if (const auto width = ReadCount(format, at, arguments, next)) {
      conversion.width = *width;
      if (conversion.width < 0) {  // a negative "*" width left-justifies
        conversion.flags += '-';
        conversion.width = -conversion.width;
      }
    }
    if (at < format.size() && format[at] == '.') {
      ++at;
      conversion.precision = std::max(ReadCount(format, at, arguments, next).value_or(0), 0);
    }
    while (at < format.size() && OneOf("hlqLV", format[at])) ++at;  // sizes: every number is wide here
    if (at >= format.size() || !OneOf(kTypes, format[at])) {
      out.append(format, percent, at - percent);  // not a conversion: copied as it stands
      continue;
    }
    conversion.type = format[at++];
    out += Convert(conversion, next < arguments.size() ? arguments[next++] : Scalar());
  }
  return out;
}

}  // namespace tarnwick::rex
