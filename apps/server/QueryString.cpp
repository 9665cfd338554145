#include "server/QueryString.h"

#include "support/Hex.h"

namespace tarnwick::server {
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
    if (const auto byte = c == '%' && i + 2 < text.size() ? HexByte(text[i + 1], text[i + 2]) : std::nullopt) {
      decoded += static_cast<char>(*byte);
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
