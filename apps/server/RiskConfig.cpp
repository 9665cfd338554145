#include "server/RiskConfig.h"

#include <charconv>
#include <sstream>

#include "server/TextLines.h"
#include "support/Text.h"

namespace tarnwick::server {

namespace {

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  std::istringstream in{std::string(text)};
  for (std::string word; in >> word;) words.push_back(LowerAscii(word));
  return words;
}

// Applies one "key = value" line; the reason when it cannot.
std::string Apply(RiskConfig& config, std::string_view key, std::string_view value,
                  const std::filesystem::path& folder) {
  if (key == "popularity_list") {
    if (value.empty()) return "popularity_list needs a file name";
    config.popularityList = folder / std::filesystem::path(std::string(value));
    return {};
  }
  if (key == "shared_hosting") {
    config.sharedHosting = Words(value);
    return {};
  }
  if (key.substr(0, 6) == "brand ") {
    const std::string_view word = TrimBlanks(key.substr(6));
    auto domains = Words(value);
    if (word.empty() || word.find(' ') != std::string_view::npos || domains.empty()) {
      return "a brand line reads: brand WORD = DOMAIN...";
    }
    config.brands.push_back({LowerAscii(word), std::move(domains)});
    return {};
  }
  for (const WeightKey& weight : kWeightKeys) {
    if (weight.key != key) continue;
    int number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (value.empty() || error != std::errc() || end != value.data() + value.size()) {
      return std::string(key) + " needs a whole number, not '" + std::string(value) + "'";
    }
    config.weights.*weight.field = number;
    return {};
  }
  return "unknown key '" + std::string(key) + "'";
}

}  // namespace

std::optional<RiskConfig> ParseRiskConfig(std::string_view text, const std::filesystem::path& folder,
                                          std::string& error) {
  RiskConfig config;
  std::string failure;
  ForEachLine(text, [&](std::size_t number, std::string_view line) {
    line = TrimBlanks(line.substr(0, line.find('#')));
    if (line.empty()) return true;
    const auto equals = line.find('=');
    const std::string reason = equals == std::string_view::npos ? "expected key = value"
                                                                : Apply(config, TrimBlanks(line.substr(0, equals)),
                                                                        TrimBlanks(line.substr(equals + 1)), folder);
    if (!reason.empty()) failure = "line " + std::to_string(number) + ": " + reason;
    return reason.empty();
  });
  if (failure.empty()) return config;
  error = failure;
  return std::nullopt;
}

std::optional<RiskConfig> ReadRiskConfig(const std::filesystem::path& file, std::string& error) {
  std::error_code missing;
  if (!std::filesystem::exists(file, missing)) return RiskConfig{};
  const auto text = ReadTextFile(file);
  if (!text) {
    error = "cannot read " + file.string();
    return std::nullopt;
  }
  auto config = ParseRiskConfig(*text, file.parent_path(), error);
  if (!config) error = file.string() + ", " + error;
  return config;
}

}  // namespace tarnwick::server
