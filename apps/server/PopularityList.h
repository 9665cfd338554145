// A list of popular domains by rank: "rank,domain" lines (the form the public
// top-site lists use) or one domain per line, ranked by line number.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "server/PhishIndex.h"

namespace tarnwick::server {

class PopularityList {
 public:
  // Nothing, with the reason in `error`, when the file cannot be read.
  static std::optional<PopularityList> Read(const std::filesystem::path& file, std::string& error);
  static PopularityList Parse(std::string_view text);

  // The best rank of the host or of a domain above it; 0 when none is
  // listed. The walk up stops below a shared-hosting domain: its customers'
  // sites do not share its popularity.
  std::uint32_t RankOf(std::string_view host, const std::vector<std::string>& sharedHosting) const;

  std::size_t size() const { return ranks_.size(); }

 private:
  std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>> ranks_;
};

}  // namespace tarnwick::server
