#include "Scalar.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace tarnwick::rex {

double LeadingNumber(const std::string& text) {
  std::size_t at = 0;
  while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
  const std::size_t start = at;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  const auto digits = [&] {
    const std::size_t from = at;
    while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at]))) ++at;
    return at - from;
  };
  std::size_t mantissa = digits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    mantissa += digits();
  }
  if (mantissa == 0) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t mark = at++;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
    if (digits() == 0) at = mark;
  }
  return std::strtod(text.substr(start, at - start).c_str(), nullptr);
}

std::string Scalar::AsText() const {
  if (const auto* text = std::get_if<std::string>(&value_)) return *text;
  if (const auto* number = std::get_if<double>(&value_)) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.15g", *number);
    return buffer;
  }
  return {};
}

double Scalar::AsNumber() const {
  if (const auto* number = std::get_if<double>(&value_)) return *number;
  if (const auto* text = std::get_if<std::string>(&value_)) return LeadingNumber(*text);
  return 0;
}

bool Scalar::Truth() const {
  if (const auto* number = std::get_if<double>(&value_)) return *number != 0;
  if (const auto* text = std::get_if<std::string>(&value_)) return !text->empty() && *text != "0";
  return false;
}

}  // namespace tarnwick::rex
