#include "server/QueryString.h"

namespace tarnwick::server {

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

namespace {

Params Parse(std::string_view text, bool plusIsSpace) {
  Params params;
  while (!text.empty()) {
    const auto amp = text.find('&');
    const std::string_view pair = text.substr(0, amp);
    text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
    if (pair.empty()) continue;
    const auto equals = pair.find('=');
    const std::string_view value = equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1);
    params.emplace_back(PercentDecode(pair.substr(0, equals), plusIsSpace), PercentDecode(value, plusIsSpace));
  }
  return params;
}

}  // namespace

std::string PercentDecode(std::string_view text, bool plusIsSpace) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '%' && i + 2 < text.size() && HexDigitValue(text[i + 1]) >= 0 && HexDigitValue(text[i + 2]) >= 0) {
      decoded += static_cast<char>(HexDigitValue(text[i + 1]) * 16 + HexDigitValue(text[i + 2]));
      i += 2;
    } else {
      decoded += plusIsSpace && c == '+' ? ' ' : c;
    }
  }
  return decoded;
}

Params ParseQuery(std::string_view query) { return Parse(query, false); }

Params ParseForm(std::string_view body) { return Parse(body, true); }

std::optional<std::string> Param(const Params& params, std::string_view name) {
  for (const auto& [key, value] : params) {
    if (key == name) return value;
  }
  return std::nullopt;
}

}  // namespace tarnwick::server
