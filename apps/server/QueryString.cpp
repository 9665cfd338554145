#include "server/QueryString.h"

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

Params ParseQuery(std::string_view query) { return Parse(query, false); }

Params ParseForm(std::string_view body) { return Parse(body, true); }

std::optional<std::string> Param(const Params& params, std::string_view name) {
  for (const auto& [key, value] : params) {
    if (key == name) return value;
  }
  return std::nullopt;
}

}  // namespace tarnwick::server
